// The search, and the details of what is selected. The page is complete without this script: items
// of the drawing are links to the rows of the tables. Texts are only ever set as texts.
'use strict';
(() => {
  const byId = (id) => document.getElementById(id);
  const panels = Array.from(document.querySelectorAll('.details'));
  const search = byId('search');
  const rows = Array.from(document.querySelectorAll('tbody tr[id]'));
  const items = Array.from(document.querySelectorAll('a.item'));
  const isShown = (item) => !item.classList.contains('dim');

  const add = (parent, name, text) => {
    const element = document.createElement(name);
    element.textContent = text;
    parent.append(element);
    return element;
  };

  // The ids of the rows that tell of an item: slots before functions.
  const rowsOf = (item) => {
    const prefix = item.closest('.board').dataset.prefix || '';
    const ids = (letter, text) =>
      (text || '').split(' ').filter(Boolean).map((place) => prefix + letter + place);
    return [...ids('s', item.dataset.slots), ...ids('f', item.dataset.functions)];
  };

  // Repeats a row of a table as a list of its headings and cells.
  const tellRow = (details, row) => {
    const headings = row.closest('table').tHead.rows[0].cells;
    const named = /f[0-9]+$/.test(row.id) ? 2 : 1;  // functions by address and name
    const names = Array.from(row.cells).slice(0, named).map((cell) => cell.textContent.trim());
    add(details, 'h3', names.join(' '));
    const list = add(details, 'dl', '');
    for (let i = named; i < row.cells.length; ++i) {
      const text = row.cells[i].textContent.trim();
      if (text === '') continue;
      add(list, 'dt', headings[i].textContent);
      add(list, 'dd', text);
    }
  };

  const rest = () => {
    for (const details of panels) {
      details.replaceChildren();
      details.classList.add('resting');
      add(details, 'p', 'Select a slot, a card or a port to see its details.').className = 'hint';
    }
  };

  const unmark = () => {
    for (const element of document.querySelectorAll('.selected')) element.classList.remove('selected');
    for (const item of document.querySelectorAll('[aria-current]')) item.removeAttribute('aria-current');
  };

  const close = () => {
    unmark();
    rest();
  };

  const tell = (details, ids) => {
    details.replaceChildren();
    details.classList.remove('resting');
    const button = add(details, 'button', 'Close');
    button.type = 'button';
    button.addEventListener('click', close);
    for (const id of ids) {
      const row = byId(id);
      if (!row) continue;
      row.classList.add('selected');
      tellRow(details, row);
    }
    details.scrollTop = 0;
  };

  const select = (item) => {
    close();
    item.classList.add('selected');
    item.setAttribute('aria-current', 'true');
    tell(item.closest('.board').querySelector('.details'), rowsOf(item));
  };

  // One item at a time can be reached with the tabulator key, all with the arrow keys.
  const moveTo = (item) => {
    for (const other of items) other.setAttribute('tabindex', other === item ? '0' : '-1');
    item.focus();
  };

  const step = (item, key) => {
    const shown = items.filter(isShown);
    const place = shown.indexOf(item);
    const last = shown.length - 1;
    const next = {
      ArrowDown: Math.min(place + 1, last), ArrowRight: Math.min(place + 1, last),
      ArrowUp: Math.max(place - 1, 0), ArrowLeft: Math.max(place - 1, 0), Home: 0, End: last,
    }[key];
    return next === undefined ? null : shown[next];
  };

  const onItemKey = (event) => {
    const next = step(event.currentTarget, event.key);
    if (event.key === ' ') select(event.currentTarget);
    else if (!next) return;
    else moveTo(next);
    event.preventDefault();
  };

  // What is closed is open while the search finds something in it, and on paper.
  const folds = Array.from(document.querySelectorAll('details'), (fold) => [fold, fold.open]);

  // Texts of rows in lower case, read once, when the first search needs them.
  let texts = null;
  const find = () => {
    texts ||= rows.map((row) => row.textContent.toLowerCase());
    const words = search.value.toLowerCase().split(/\s+/).filter(Boolean);
    const found = new Set();
    rows.forEach((row, place) => {
      row.hidden = !words.every((word) => texts[place].includes(word));
      if (!row.hidden) found.add(row.id);
    });
    for (const item of items) {
      item.classList.toggle('dim', !rowsOf(item).some((id) => found.has(id)));
    }
    for (const [fold, wasOpen] of folds) {
      fold.open = words.length ? fold.querySelector('tbody tr[id]:not([hidden])') !== null : wasOpen;
    }
    byId('found').textContent = words.length ? `${found.size} of ${rows.length} rows` : '';
  };

  for (const [place, item] of items.entries()) {
    item.setAttribute('tabindex', place ? '-1' : '0');
    item.addEventListener('keydown', onItemKey);
    item.addEventListener('click', (event) => {
      event.preventDefault();
      moveTo(item);
      select(item);
    });
  }
  document.addEventListener('keydown', (event) => {
    if (event.key === 'Escape') close();
    if (event.key === '/' && document.activeElement !== search) {
      event.preventDefault();
      search.focus();
    }
  });
  window.addEventListener('beforeprint', () => {
    for (const [fold] of folds) fold.open = true;
  });
  search.addEventListener('input', find);
  byId('find').hidden = false;
  for (const details of panels) {
    details.hidden = false;
    details.setAttribute('aria-live', 'polite');
  }
  rest();
})();
