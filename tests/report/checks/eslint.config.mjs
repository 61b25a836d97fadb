import js from '@eslint/js';
import globals from 'globals';

export default [
    js.configs.recommended,
    {
        languageOptions: { globals: globals.browser },
        linterOptions: { reportUnusedDisableDirectives: 'error' },
        rules: {
            eqeqeq: 'error',
            'no-shadow': 'error',
            'no-var': 'error',
            'prefer-const': 'error',
            // The page's policy would block what these make anyway.
            'no-eval': 'error',
            'no-implied-eval': 'error',
            'no-new-func': 'error',
            'no-script-url': 'error',
        },
    },
];
