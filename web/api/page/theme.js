// Light or dark as the browser is.
const dark = window.matchMedia('(prefers-color-scheme: dark)');

function follow() {
    document.getElementById('interface').setAttribute('theme', dark.matches ? 'dark' : 'light');
}

dark.addEventListener('change', follow);
follow();
