// The upper part of the page: figures, bar charts, the course of the runs.

const kMostBars = 10;
const kMostRuns = 12;

function showHead(model) {
  document.title = model.name + ' \u2013 addresses';
  byId('name').textContent = model.name;
  const about = byId('about'), {last_run: lastRun} = model.figures;
  about.replaceChildren('E-mail addresses and the pages on which they stand.');
  if (lastRun) about.append(' The last run began on ', make('span', 'time', formatTime(lastRun) + ' UTC'), '.');
  const {place, site, since} = model.only;
  const only = [];
  if (place) only.push('in the place ' + place);
  if (site) only.push('on the site ' + site);
  if (since) only.push('first seen on ' + formatTime(since) + ' UTC or later');
  if (only.length > 0) about.append(' This page holds only what was found ' + only.join(', ') + '.');
}

function showFigures(model, sites) {
  const {addresses, pages, left} = model.figures;
  const figures = [
    ['Addresses', model.rows.length],
    ['Sites with addresses', sites.length],
    ['Sightings', model.sightings],
    ['Pages read', pages],
    ['Pages left to visit', left],
  ];
  if (addresses !== model.rows.length) figures.splice(1, 0, ['In the whole collection', addresses]);
  byId('figures').replaceChildren(
      ...figures.map(([name, number]) => make('div', '', make('dt', '', name), make('dd', '', formatNumber(number)))));
}

function makeBar(share) {
  const track = make('span', 'track');
  if (share === 0) return track;
  const bar = make('span', 'bar');
  bar.style.width = (share * 100).toFixed(2) + '%';
  track.append(bar);
  return track;
}

// Each bar is a button that narrows the list to its addresses.
function showChart(list, counts, prefix, search) {
  const most = counts.length > 0 ? counts[0][1] : 1;
  const bars = counts.slice(0, kMostBars).map(([name, number]) => {
    const label = make('span', 'label', name);
    label.title = name;
    const bar = make('button', '', label, makeBar(number / most), make('span', 'number', formatNumber(number)));
    bar.type = 'button';
    bar.addEventListener('click', () => search(prefix + name));
    return make('li', '', bar);
  });
  list.replaceChildren(...bars);
}

function showMoreSites(sites) {
  const more = sites.length - kMostBars;
  byId('more-sites').hidden = more <= 0;
  byId('more-sites').textContent = more === 1 ? 'And one more site.' : 'And ' + formatNumber(more) + ' more sites.';
}

function makeRun(run, most) {
  const row = make('tr');
  const fresh = make('td', 'fresh', make('span', 'number', formatNumber(run.new)));
  fresh.append(makeBar(most > 0 ? run.new / most : 0));
  row.append(make('td', 'time', formatTime(run.started)), fresh);
  for (const number of [run.pages, run.failed, run.refused]) row.append(make('td', 'number', formatNumber(number)));
  row.append(make('td', 'number', run.ended ? formatSpan(run.seconds) : ''));
  row.append(make('td', '', run.ended ? run.reason : 'under way, or cut short'));
  return row;
}

function showRuns(model) {
  const {runs} = model;
  byId('course').hidden = runs.length === 0;
  const most = runs.reduce((largest, run) => Math.max(largest, run.new), 0);
  const show = (chosen) => byId('runs').tBodies[0].replaceChildren(...chosen.map((run) => makeRun(run, most)));
  show(runs.slice(-kMostRuns));
  const all = byId('all-runs');
  if (runs.length <= kMostRuns) return;
  all.hidden = false;
  all.textContent = 'Show all ' + formatNumber(runs.length) + ' runs';
  all.addEventListener('click', () => {
    all.hidden = true;
    show(runs);
  });
}

function showSummary(model, search) {
  const sites = model.countSites();
  showHead(model);
  showFigures(model, sites);
  showChart(byId('sites'), sites, 'site:', search);
  showMoreSites(sites);
  showChart(byId('places'), model.countPlaces(), 'place:', search);
  showRuns(model);
}
