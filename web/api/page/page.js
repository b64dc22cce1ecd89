// Light or dark as the browser is; one operation at a time beside the list of them, all of them where there
// is no room for the list.
const page = document.getElementById('interface');
const dark = window.matchMedia('(prefers-color-scheme: dark)');
const narrow = window.matchMedia('(max-width: 767px)');

function follow() {
    page.setAttribute('theme', dark.matches ? 'dark' : 'light');
    page.setAttribute('render-style', narrow.matches ? 'read' : 'focused');
}

dark.addEventListener('change', follow);
narrow.addEventListener('change', follow);
follow();
