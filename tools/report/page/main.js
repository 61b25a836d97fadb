// Puts the page together.
import { showCalls } from './calls.js';
import { byId } from './dom.js';
import { showComparison } from './comparison.js';
import { showDetails } from './details.js';
import { showHead } from './head.js';
import { showList } from './list.js';
import { Track } from './model.js';
import { showOverview } from './overview.js';
import { Session } from './session.js';
import { showSession } from './session_view.js';
import { showSource } from './source.js';
import { showStage } from './stage.js';
import { addressOf, addressOfCall, addressOfMistake, readAddress, Store } from './store.js';
import { showTimeline } from './timeline.js';

/** Goes where the address says, if it is one of this page. */
function followAddress(store) {
    const address = readAddress(location.hash);
    if (address?.call || address?.mistake) {
        followToCall(store, address);
        return;
    }
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

function followToCall(store, { call, mistake: id }) {
    const mistake = store.session?.mistake(id) ?? null;
    const found = mistake ? mistake.call : (store.session?.call(call) ?? null);
    if (mistake || found) {
        store.chooseCall(found, mistake);
    }
}

/** Writes the address of the chosen call or mistake into the location. */
function writeCallAddress({ call, mistake }) {
    const address = mistake ? addressOfMistake(mistake) : call && addressOfCall(call);
    if (address && location.hash !== address) {
        history.replaceState(null, '', address);
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
const tracks = page.tracks.map((data, index) => new Track(data, index + 1));
const store = new Store(tracks, page.session ? new Session(page.session, tracks) : null);
showHead(store, page);
showOverview(store);
showComparison(store, page);
showTimeline(store, page);
showSession(store, page);
showStage(store, page);
showDetails(store);
showCalls(store);
showList(store);
showSource(store);
store.chooseTrack(store.track);
followAddress(store);
store.on('entry', writeAddress);
store.on('call', writeCallAddress);
addEventListener('hashchange', () => followAddress(store));
document.documentElement.dataset.ready = 'true';
