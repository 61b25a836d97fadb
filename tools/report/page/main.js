// Puts the page together.
import { byId } from './dom.js';
import { showComparison } from './comparison.js';
import { showDetails } from './details.js';
import { showHead } from './head.js';
import { showList } from './list.js';
import { Track } from './model.js';
import { showOverview } from './overview.js';
import { showSource } from './source.js';
import { showStage } from './stage.js';
import { addressOf, readAddress, Store } from './store.js';
import { showTimeline } from './timeline.js';

/** Goes where the address says, if it is one of this page. */
function followAddress(store) {
    const address = readAddress(location.hash);
    const track = address && store.tracks[address.track - 1];
    if (!track) {
        return;
    }
    if (track !== store.track) {
        store.chooseTrack(track);
    }
    if (address.line > 0) {
        store.chooseEntry(track.entryAt(address.line));
    }
}

/** Writes the chosen block's address into the location, so that it can be copied and mailed. */
function writeAddress({ track, entry }) {
    const address = readAddress(location.hash);
    const isThere =
        address &&
        address.track === track.number &&
        address.line > 0 &&
        track.entryAt(address.line) === entry;
    if (entry && !isThere) {
        history.replaceState(null, '', addressOf(track, entry.line));
    }
}

byId('no-script').remove();
const page = JSON.parse(byId('data').textContent);
const store = new Store(page.tracks.map((data, index) => new Track(data, index + 1)));
showHead(store, page);
showOverview(store);
showComparison(store, page);
showTimeline(store, page);
showStage(store, page);
showDetails(store);
showList(store);
showSource(store);
store.chooseTrack(store.track);
followAddress(store);
store.on('entry', writeAddress);
addEventListener('hashchange', () => followAddress(store));
document.documentElement.dataset.ready = 'true';
