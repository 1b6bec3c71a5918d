// Pieces that the page is made of. Whatever comes from the web is put in as text, never as markup.

function byId(id) {
  return document.getElementById(id);
}

function make(name, className, ...content) {
  const element = document.createElement(name);
  if (className) element.className = className;
  element.append(...content);
  return element;
}

function formatNumber(number) {
  return number.toLocaleString('en');
}

function formatTime(seconds) {
  return new Date(seconds * 1000).toISOString().slice(0, 16).replace('T', ' ');
}

function formatSpan(seconds) {
  if (seconds < 60) return Math.round(seconds) + ' s';
  const minutes = Math.round(seconds / 60);
  return minutes < 60 ? minutes + ' min' : Math.floor(minutes / 60) + ' h ' + (minutes % 60) + ' min';
}

// The name of a page, which opens it. Nothing but http and https is ever opened, and the page does not learn from
// where.
function linkTo(page) {
  const name = nameOfPage(page);
  if (!/^https?:\/\//i.test(page.url)) return make('span', '', name);
  const link = make('a', '', name);
  link.href = page.url;
  link.target = '_blank';
  link.rel = 'noreferrer';
  link.title = page.url;
  return link;
}
