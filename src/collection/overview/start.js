// Puts the parts of the page together. What is there already is replaced, so that a copy that a browser has saved, with
// everything shown in it, works like the page itself.

const kMostPrinted = 5000;  // about two hundred sheets; browsers fail to print many times as many

// What is printed is what the search has left, in the order of the list, as a plain table that breaks over pages.
function fillPrint(model, list) {
  const head = make('tr'), table = byId('print');
  for (const title of ['Address', 'Page', 'Place', 'First seen (UTC)']) head.append(make('th', '', title));
  const body = make('tbody');
  for (const row of list.matching.slice(0, kMostPrinted)) {
    const page = model.pageOf(row);
    const where = make('td', '', nameOfPage(page), make('br'), make('small', '', page.url));
    body.append(make(
        'tr', '', make('td', '', row.address), where, make('td', '', model.placeOf(row)),
        make('td', '', formatTime(model.seen(row)))));
  }
  table.replaceChildren(make('thead', '', head), body);
  const about = [];
  if (list.searched) about.push(byId('count').textContent + ' match: ' + list.searched + '.');
  if (list.matching.length > kMostPrinted) {
    about.push('The first ' + formatNumber(kMostPrinted) + ' are printed; a search chooses others.');
  }
  if (about.length > 0) table.prepend(make('caption', '', about.join(' ')));
}

function start() {
  const model = new Model(byId('data').textContent);
  byId('main').hidden = false;
  const field = byId('search');
  const list = new List(model);
  const search = (text) => {
    field.value = text;
    list.search(text);
    byId('tools').scrollIntoView();
    field.focus({preventScroll: true});
  };
  let waiting = 0;
  field.addEventListener('input', () => {
    clearTimeout(waiting);
    waiting = setTimeout(() => list.search(field.value), 80);
  });
  field.addEventListener('keydown', (event) => {
    if (event.key !== 'ArrowDown') return;
    event.preventDefault();
    list.grid.focus({preventScroll: true});
    list.moveTo(0);
  });
  addEventListener('keydown', (event) => {
    if (event.key !== '/' || event.target.closest?.('input')) return;
    event.preventDefault();
    search(field.value);
    field.select();
  });
  byId('clear').addEventListener('click', () => search(''));
  addEventListener('beforeprint', () => fillPrint(model, list));
  addEventListener('afterprint', () => byId('print').replaceChildren());
  showSummary(model, search);
  list.refresh();
}

start();
