export default {
    extends: 'stylelint-config-standard',
    reportNeedlessDisables: true,
    reportInvalidScopeDisables: true,
};
