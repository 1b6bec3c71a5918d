// What the page holds: the records of the collection, decoded once, and the questions that are asked of them. The
// writer (overview.cpp) says how a record is laid out.
'use strict';

const kSightingNumbers = 4;  // page, place, first seen, seconds from the first to the last time it was seen
const kGone = 8;             // added to the place of a sighting that is gone

// A site as its pages are stored under it: letters beyond ASCII coded. What is not the name of a host stays as it is.
function storedSite(name) {
  try {
    return new URL('http://' + name).hostname;
  } catch {
    return name;
  }
}

class Model {
  constructor(text) {
    const data = JSON.parse(text);
    this.name = data.collection;
    this.only = data.only;
    this.figures = data.figures;
    this.runs = data.runs;
    this.placeNames = data.places;
    this.pages = [];
    this.rows = [];
    this.sightings = 0;
    const positions = new Map();  // of pages, by their number in the collection
    for (const record of data.records) {
      if (typeof record[0] === 'number') {
        positions.set(record[0], this.pages.length);
        this.pages.push({url: record[1], title: record[2], site: record[3], text: null});
      } else {
        this.addRow(record[0], record[1], positions);
      }
    }
  }

  // Sightings that are gone stand behind the others. They are shown, but neither counted nor searched, unless an
  // address has no others.
  addRow(address, sightings, positions) {
    let live = 0;
    for (let at = 0; at < sightings.length; at += kSightingNumbers) {
      sightings[at] = positions.get(sightings[at]);
      if (sightings[at + 1] < kGone) live = at + kSightingNumbers;
    }
    const counted = live || sightings.length;
    this.sightings += counted / kSightingNumbers;
    this.rows.push({address, key: address.toLowerCase(), sightings, counted, gone: live === 0});
  }

  pageOf(row) {
    return this.pages[row.sightings[0]];
  }
  placeOf(row) {
    return this.placeNames[row.sightings[1] % kGone];
  }
  seen(row) {
    return row.sightings[2];
  }
  countOf(row) {
    return row.counted / kSightingNumbers;
  }

  // Of one row, for its list: from the position `from` on, at most `most`.
  sightingsOf(row, from, most) {
    const found = [];
    const end = Math.min(row.sightings.length, (from + most) * kSightingNumbers);
    for (let at = from * kSightingNumbers; at < end; at += kSightingNumbers) {
      const [page, place, first, span] = row.sightings.slice(at, at + kSightingNumbers);
      found.push({
        page: this.pages[page],
        place: this.placeNames[place % kGone],
        first,
        last: first + span,
        gone: place >= kGone,
      });
    }
    return found;
  }

  // The rows in which every word of the search occurs, in the order in which they were found.
  find(search) {
    let rows = this.rows;
    for (const word of search.toLowerCase().split(/\s+/)) {
      if (word) rows = rows.filter(this.testFor(word));
    }
    return rows;
  }

  testFor(word) {
    if (word.startsWith('place:')) {
      const place = this.placeNames.indexOf(word.slice('place:'.length));
      return (row) => this.some(row, (page, at) => at % kGone === place);
    }
    if (word.startsWith('site:')) {
      const site = storedSite(word.slice('site:'.length));
      return (row) => this.some(row, (page) => this.pages[page].site === site);
    }
    const hits = Uint8Array.from(this.pages, (page) => this.textOf(page).includes(word));
    return (row) => row.key.includes(word) || this.some(row, (page) => hits[page]);
  }

  // Whether `test` holds for the page and the place of a sighting that counts.
  some(row, test) {
    for (let at = 0; at < row.counted; at += kSightingNumbers) {
      if (test(row.sightings[at], row.sightings[at + 1])) return true;
    }
    return false;
  }

  textOf(page) {
    return page.text ??= (page.title + '\n' + page.url).toLowerCase();
  }

  // How many addresses stand on each site, or in each place: pairs of a name and a number, the largest number first.
  count(nameOf) {
    const counts = new Map();
    for (const row of this.rows) {
      const names = new Set();
      this.some(row, (page, place) => {
        names.add(nameOf(page, place));
      });
      for (const name of names) counts.set(name, (counts.get(name) ?? 0) + 1);
    }
    return [...counts].sort((a, b) => b[1] - a[1] || (a[0] < b[0] ? -1 : 1));
  }
  countSites() {
    return this.count((page) => this.pages[page].site);
  }
  countPlaces() {
    return this.count((page, place) => this.placeNames[place % kGone]);
  }
}

// The columns of the list. What `key` gives is what they are sorted by.
const kColumns = [
  {title: 'Address', key: (model, row) => row.key},
  {title: 'Site', key: (model, row) => model.pageOf(row).site},
  {title: 'Page', key: (model, row) => nameOfPage(model.pageOf(row)), byLanguage: true},
  {title: 'Place', key: (model, row) => model.placeOf(row)},
  {title: 'First seen (UTC)', key: (model, row) => model.seen(row)},
  {title: 'Sightings', key: (model, row) => model.countOf(row), number: true},
];

function nameOfPage(page) {
  return page.title || page.url;
}

// A sorted copy; rows that are equal in this column stay in their order.
function sorted(model, rows, column, descending) {
  const collator = new Intl.Collator();
  const compare = column.byLanguage ? (a, b) => collator.compare(a.key, b.key) :
                                      (a, b) =>
                                          (a.key < b.key     ? -1 :
                                               a.key > b.key ? 1 :
                                                               0);
  const keyed = rows.map((row) => ({row, key: column.key(model, row)}));
  keyed.sort(descending ? (a, b) => compare(b, a) : compare);
  return keyed.map(({row}) => row);
}
