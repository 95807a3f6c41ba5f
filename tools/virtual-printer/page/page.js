'use strict';

const get = id => document.getElementById(id);
const buttons = [...document.querySelectorAll('button[data-name]')];
const mostEntries = 1000;
const mostReceipts = 30;
const dots = { width: 640, tile: 256, margin: 12 };

let openPaper = 0;    // the number of the receipt being printed
let firstEntry = 0;   // the number of the first row in the table

function make(name, text, className) {
  const node = document.createElement(name);
  node.textContent = text;
  if (className) node.className = className;
  return node;
}

function inputOf(button) {
  const setting = button.closest('.setting');
  return setting && setting.querySelector('input');
}

// The newest stays visible, unless somebody has scrolled to something older.
function keepingEnd(box, change) {
  const atEnd = box.scrollHeight - box.scrollTop - box.clientHeight < 48;
  change();
  if (atEnd) box.scrollTop = box.scrollHeight;
}

function lamp(name, state, words) {
  const node = get('lamp-' + name);
  node.className = state;
  node.textContent = name[0].toUpperCase() + name.slice(1) + ': ' + words;
}

function showLamps(status) {
  const on = name => status[name] === 'on';
  const dark = on('power-off');
  const wrong = [['cover', 'cover open'], ['jam', 'cutter jammed'], ['offline', 'offline']]
    .filter(([name]) => on(name)).map(([, words]) => words);
  const line = [['connection-lost', 'lost'], ['connection-closed', 'closed'], ['busy', 'busy']]
    .filter(([name]) => on(name)).map(([, words]) => words);
  lamp('power', dark ? 'dark' : 'good', dark ? 'off' : 'on');
  lamp('error', dark ? 'dark' : wrong.length ? 'bad' : 'dark', wrong.join(', ') || 'none');
  lamp('paper', dark ? 'dark' : on('paper-out') ? 'bad' : on('near-end') ? 'warn' : 'good',
       on('paper-out') ? 'out' : on('near-end') ? 'near its end' : 'there');
  lamp('line', line.length ? 'bad' : 'good', line.join(', ') || 'connected');
  lamp('drawer', on('drawer') ? 'warn' : 'dark', on('drawer') ? 'open' : 'closed');
  get('drawer').classList.toggle('open', on('drawer'));
}

function showStatus(status) {
  showLamps(status);
  for (const button of buttons) {
    const value = status[button.dataset.name];
    button.setAttribute('aria-pressed', String(value !== 'off'));
    const input = inputOf(button);
    if (input && /^\d+$/.test(value)) input.value = value;
  }
  get('counters').textContent =
    ['receipts', 'lines', 'bytes held', 'unknown bytes', 'refused frames', 'refused content']
      .map(name => name + ' ' + status[name]).join(' · ');
}

function showReceipt(receipt) {
  const figure = make('div', '', receipt.cut ? 'receipt' : 'receipt uncut');
  const picture = new Image();
  picture.alt = receipt.text;
  picture.width = dots.width;
  picture.height = receipt.height;  // known before it has come, so that nothing moves then
  picture.src = '/receipts/' + receipt.number + '.png';
  figure.append(picture);
  get('receipts').append(figure);
  while (get('receipts').children.length > mostReceipts) get('receipts').firstChild.remove();
}

function showPaper(paper) {
  const tiles = get('tiles');
  if (paper.number !== openPaper) tiles.replaceChildren();
  openPaper = paper.number;
  get('open').setAttribute('aria-label', paper.text);
  get('open').hidden = paper.length <= dots.margin;
  get('open').style.aspectRatio = dots.width + ' / ' + Math.max(paper.length, 1);
  paper.tiles.forEach((version, index) => {
    const tile = tiles.children[index] || tiles.appendChild(new Image());
    if (tile.dataset.version === String(version)) return;
    tile.dataset.version = version;
    tile.alt = '';
    tile.src = '/paper/' + paper.number + '/' + index + '.png?' + version;
  });
}

function row(entry) {
  const line = make('tr', '', entry.kind);
  line.append(make('td', 'offset' in entry ? entry.offset : entry.kind === 'answer' ? '◂' : ''),
              make('td', entry.hex), make('td', entry.words));
  return line;
}

function showLog(log) {
  const entries = get('entries');
  if (log.from > firstEntry + entries.children.length) {  // what is between came too fast to keep
    entries.replaceChildren();
    firstEntry = log.from;
  }
  while (firstEntry + entries.children.length > log.from) entries.lastChild.remove();
  entries.append(...log.entries.map(row));
  while (entries.children.length > mostEntries) {
    entries.firstChild.remove();
    ++firstEntry;
  }
}

function startAnew() {
  get('entries').replaceChildren();
  get('receipts').replaceChildren();
  get('tiles').replaceChildren();
  firstEntry = 0;
  openPaper = 0;
}

function show(news) {
  if (news.start) startAnew();
  if (news.status) showStatus(news.status);
  keepingEnd(get('roll'), () => {
    (news.receipts || []).forEach(showReceipt);
    if (news.paper) showPaper(news.paper);
  });
  if (news.log) keepingEnd(get('log'), () => showLog(news.log));
}

function setGone(gone) {
  get('gone').hidden = !gone;
  document.body.classList.toggle('gone', gone);
  for (const button of buttons) button.disabled = gone;
}

function connect() {
  const events = new EventSource('/events');
  events.onopen = () => setGone(false);
  events.onmessage = message => show(JSON.parse(message.data));
  events.onerror = () => {
    setGone(true);
    if (events.readyState === EventSource.CLOSED) setTimeout(connect, 1000);
  };
}

function valueFor(button) {
  if (button.getAttribute('aria-pressed') === 'true') return 'off';
  const input = inputOf(button);
  return input ? input.value : 'on';
}

async function press(button) {
  const request = 'set ' + button.dataset.name + ' ' + valueFor(button);
  try {
    const response = await fetch('/control', { method: 'POST', body: request });
    get('refusal').textContent = response.ok ? '' : await response.text();
  } catch {
    get('refusal').textContent = 'The printer did not hear that.';
  }
}

for (const button of buttons) button.addEventListener('click', () => press(button));
setGone(true);
connect();
