// The list of addresses. Rows exist only where the window shows them, so that a hundred thousand cost no more than
// forty.

const kSpareRows = 8;      // made beyond both edges of the window
const kMostRows = 300000;  // a browser's largest height holds so many
const kSightingsAtOnce = 100;

class List {
  constructor(model) {
    this.model = model;
    this.rows = model.rows;     // those that the search has left, in the order shown
    this.elements = new Map();  // of the rows that exist, by position
    this.active = -1;           // the position that the keyboard is on; -1: none
    this.open = -1;             // the position whose sightings are shown; -1: none
    this.panel = null;
    this.panelHeight = 0;
    this.column = null;
    this.descending = false;
    this.grid = byId('grid');
    this.body = byId('rows');
    this.body.replaceChildren();
    this.makeColumns();
    this.grid.setAttribute('aria-colcount', kColumns.length);
    this.grid.addEventListener('keydown', (event) => this.onKey(event));
    this.grid.addEventListener('focus', () => this.onFocus());
    this.body.addEventListener('click', (event) => this.onClick(event));
    addEventListener('scroll', () => this.draw(), {passive: true});
    addEventListener('resize', () => this.layOut());
    this.panelWatcher = new ResizeObserver(() => this.onPanelSize());
  }

  makeColumns() {
    this.headings = kColumns.map((column) => {
      const button = make('button', '', column.title);
      button.type = 'button';
      const heading = make('div', column.number ? 'number' : '', button);
      heading.setAttribute('role', 'columnheader');
      heading.setAttribute('aria-sort', 'none');
      button.addEventListener('click', () => this.sortBy(column));
      return heading;
    });
    byId('columns').firstElementChild.replaceChildren(...this.headings);
  }

  // The first click sorts upwards, the second downwards, the third gives the order of finding back.
  sortBy(column) {
    if (this.column !== column) {
      this.column = column;
      this.descending = false;
    } else if (!this.descending) {
      this.descending = true;
    } else {
      this.column = null;
    }
    kColumns.forEach((other, at) => {
      const order = other !== this.column ? 'none' : this.descending ? 'descending' : 'ascending';
      this.headings[at].setAttribute('aria-sort', order);
    });
    this.refresh();
  }

  search(text) {
    this.searched = text;
    this.refresh();
  }

  // Finds and sorts anew.
  refresh() {
    const found = this.model.find(this.searched ?? '');
    const rows = this.column ? sorted(this.model, found, this.column, this.descending) : found;
    this.matching = rows;
    this.rows = rows.slice(0, kMostRows);
    this.close();
    this.active = -1;
    this.clear();
    this.layOut();
    this.showCount();
    if (document.activeElement === this.grid) this.onFocus();
  }

  showCount() {
    const all = this.model.rows.length, found = this.matching.length;
    byId('count').textContent = found === all ? formatNumber(all) + (all === 1 ? ' address' : ' addresses') :
                                                formatNumber(found) + ' of ' + formatNumber(all) + ' addresses';
    byId('none').hidden = found > 0 || all === 0;
    byId('too-many').hidden = found === this.rows.length;
    byId('too-many').textContent =
        'Only the first ' + formatNumber(kMostRows) + ' are listed here. A search shows the others.';
  }

  clear() {
    for (const element of this.elements.values()) element.remove();
    this.elements.clear();
  }

  topOf(position) {
    return position * this.rowHeight + (this.open >= 0 && position > this.open ? this.panelHeight : 0);
  }

  // Sizes and places; after every change of the rows, of the window's width, of the panel.
  layOut() {
    const probe = make('div', 'row cells');
    this.body.append(probe);
    this.rowHeight = probe.getBoundingClientRect().height;
    probe.remove();
    this.grid.setAttribute('aria-rowcount', this.rows.length + 1);
    this.body.style.height = this.topOf(this.rows.length) + 'px';
    for (const [position, element] of this.elements) element.style.top = this.topOf(position) + 'px';
    if (this.panel) this.panel.style.top = (this.open + 1) * this.rowHeight + 'px';
    this.draw();
  }

  // Makes the rows that the window shows now, and takes the others away.
  draw() {
    const top = -this.body.getBoundingClientRect().top;
    const spare = kSpareRows * this.rowHeight + this.panelHeight;
    const first = Math.max(0, Math.floor((top - spare) / this.rowHeight));
    const end = Math.min(this.rows.length, Math.ceil((top + innerHeight + spare) / this.rowHeight));
    for (const [position, element] of this.elements) {
      if (position >= first && position < end) continue;
      element.remove();
      this.elements.delete(position);
    }
    for (let position = first; position < end; ++position) {
      if (this.elements.has(position)) continue;
      const element = this.makeRow(position);
      this.elements.set(position, element);
      this.body.append(element);
    }
  }

  makeRow(position) {
    const row = this.rows[position], {model} = this;
    const element = make('div', 'row cells' + (row.gone ? ' gone' : ''));
    element.id = 'row-' + position;
    element.dataset.position = position;
    element.setAttribute('role', 'row');
    element.setAttribute('aria-level', '1');
    element.setAttribute('aria-rowindex', position + 2);
    element.setAttribute('aria-expanded', position === this.open);
    element.setAttribute('aria-selected', position === this.active);
    element.style.top = this.topOf(position) + 'px';
    const page = model.pageOf(row), link = linkTo(page);
    link.tabIndex = -1;  // the sightings hold the same link for the keyboard
    const content = [
      make('span', 'address', row.address),
      page.site,
      link,
      model.placeOf(row) + (row.gone ? ', gone' : ''),
      formatTime(model.seen(row)),
      formatNumber(model.countOf(row)),
    ];
    content.forEach((part, at) => {
      const cell = make('div', 'cell-' + at, part);
      cell.setAttribute('role', 'gridcell');
      element.append(cell);
    });
    element.firstElementChild.title = row.address;
    return element;
  }

  onFocus() {
    if (this.active < 0 && this.rows.length > 0) this.activate(0);
  }

  activate(position) {
    this.elements.get(this.active)?.setAttribute('aria-selected', 'false');
    this.active = position;
    this.elements.get(position)?.setAttribute('aria-selected', 'true');
    if (position >= 0) this.grid.setAttribute('aria-activedescendant', 'row-' + position);
  }

  // Scrolls as little as needed to show the row, and its sightings where they fit.
  bringIntoView(position) {
    const head = byId('columns').getBoundingClientRect().bottom;
    const top = this.body.getBoundingClientRect().top + this.topOf(position);
    const below = position === this.open ? Math.min(this.panelHeight, innerHeight - head - this.rowHeight) : 0;
    const bottom = top + this.rowHeight + below;
    if (top < head) {
      scrollBy(0, top - head);
    } else if (bottom > innerHeight) {
      scrollBy(0, bottom - innerHeight);
    }
    this.draw();
  }

  moveTo(position) {
    if (this.rows.length === 0) return;
    const within = Math.min(this.rows.length - 1, Math.max(0, position));
    this.activate(within);
    this.bringIntoView(within);
    this.activate(within);
  }

  onKey(event) {
    if (event.key === 'Escape' && this.open >= 0) {
      this.close();
      this.grid.focus({preventScroll: true});
      event.preventDefault();
      return;
    }
    if (event.target !== this.grid || event.ctrlKey || event.metaKey || event.altKey) return;
    if (event.key === 'Tab') {
      this.goIntoPanel(event);
      return;
    }
    const head = byId('columns').getBoundingClientRect().bottom;
    const page = Math.max(1, Math.floor((innerHeight - head) / this.rowHeight) - 1);
    const steps = {ArrowDown: 1, ArrowUp: -1, PageDown: page, PageUp: -page, Home: -Infinity, End: Infinity};
    if (event.key in steps) {
      this.moveTo(this.active + steps[event.key]);
    } else if (event.key === 'Enter' || event.key === ' ') {
      this.toggle(this.active);
    } else if (event.key === 'ArrowRight' && this.active !== this.open) {
      this.toggle(this.active);
    } else if (event.key === 'ArrowLeft' && this.open >= 0) {
      this.toggle(this.open);
    } else {
      return;
    }
    event.preventDefault();
  }

  // From the list into the sightings that are shown; the headings stand between them for the browser.
  goIntoPanel(event) {
    const first = event.shiftKey ? null : this.panel?.querySelector('a, button');
    if (!first) return;
    first.focus();
    event.preventDefault();
  }

  // A click that marks text or opens a page does not open the row.
  onClick(event) {
    const element = event.target.closest('.row');
    if (!element || event.target.closest('a') || String(getSelection())) return;
    this.grid.focus({preventScroll: true});
    this.toggle(Number(element.dataset.position));
  }

  toggle(position) {
    if (position < 0) return;
    const opens = position !== this.open;
    this.close();
    this.activate(position);
    if (!opens) return;
    this.open = position;
    this.elements.get(position)?.setAttribute('aria-expanded', 'true');
    this.panel = this.makePanel(this.rows[position]);
    this.body.append(this.panel);
    this.panelHeight = this.panel.getBoundingClientRect().height;
    this.panelWatcher.observe(this.panel);
    this.layOut();
    this.bringIntoView(position);
  }

  close() {
    if (this.open < 0) return;
    this.elements.get(this.open)?.setAttribute('aria-expanded', 'false');
    this.panelWatcher.disconnect();
    this.panel.remove();
    this.panel = null;
    this.panelHeight = 0;
    this.open = -1;
    this.layOut();
  }

  onPanelSize() {
    const height = this.panel?.getBoundingClientRect().height ?? 0;
    if (height === this.panelHeight) return;
    this.panelHeight = height;
    this.layOut();
  }

  makePanel(row) {
    const panel = make('div', 'sightings');
    panel.setAttribute('role', 'row');
    panel.setAttribute('aria-level', '2');
    const list = make('ul'), more = make('button');
    more.type = 'button';
    const grow = () => {
      const from = list.childElementCount;
      list.append(...this.model.sightingsOf(row, from, kSightingsAtOnce).map(makeSighting));
      const left = row.sightings.length / kSightingNumbers - list.childElementCount;
      more.hidden = left === 0;
      more.textContent = 'Show more (' + formatNumber(left) + ' left)';
    };
    more.addEventListener('click', grow);
    const cell = make('div', '', list, more);
    cell.setAttribute('role', 'gridcell');
    cell.setAttribute('aria-colspan', kColumns.length);
    cell.setAttribute('aria-label', 'Where ' + row.address + ' stands');
    panel.append(cell);
    grow();
    return panel;
  }
}

function makeSighting(sighting) {
  const {page, place, first, last, gone} = sighting;
  const item = make('li', gone ? 'gone' : '', make('div', 'page', linkTo(page)), make('div', 'url', page.url));
  const seen = [...new Set([formatTime(first), formatTime(last)])].join(' to ');
  item.append(make('div', 'facts', [place, seen, gone ? 'gone since' : ''].filter(Boolean).join(' \u00b7 ')));
  return item;
}
