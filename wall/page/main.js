// Joins stream, picture and panels: what comes in changes the scene, what the scene and the view
// show is drawn once a frame where something has changed.
import {Control} from './control.js';
import {showLog} from './log.js';
import {Painter} from './paint.js';
import {drawCurves, showCabinet, showPanels} from './panels.js';
import {cabinetAt, neighbour, sceneOf} from './scene.js';
import {watch} from './stream.js';
import {View} from './view.js';

const at = (id) => document.getElementById(id);
const canvas = at('wall');
const painter = new Painter(canvas), view = new View(), control = new Control();
const shows = {
  cables: true,
  windows: true
};
const kSceneParts = ['wall', 'cards', 'links', 'screen', 'picture'];

let state = null, scene = null, picked = null;  // the picked cabinet's port and number
let waiting = false;

const shown = () => document.dispatchEvent(new Event('wall-shown'));
const selected = () => scene?.cabinets.find(
    (c) => picked !== null && c.port === picked.port && c.number === picked.number);

function redraw() {
  if (waiting) return;
  waiting = true;
  requestAnimationFrame(frame);
}

function frame() {
  waiting = false;
  if (scene === null) return;
  painter.resize();
  view.settle(scene, canvas.clientWidth, canvas.clientHeight);
  const moving = painter.follow(scene);
  const standsIn = painter.draw(scene, view, shows, selected());
  if (moving || standsIn) redraw();
  shown();
}

// The words over the wall: what it is, and what keeps it dark.
function bannerOf({board, wall, screen, cards}) {
  if (!board.exists)
    return [
      `There is no board in ${board.folder}.`, `quivord-board create ${board.folder}`, 'makes one.'
    ];
  if (board.troubles.length > 0)
    return [`Not all of the board can be read: ${board.troubles.join('; ')}.`];
  if (!board.loaded) return ['The FPGA has not loaded: nothing is shown yet.'];
  if (wall.cabinets === 0)
    return ['There is no wall yet.', 'quivordctl wall configure', 'lays one out.'];
  if (!screen.open)
    return ['The output is closed, so the wall is dark.', 'quivordctl output open', 'opens it.'];
  const runs = Object.values(cards.ports).flat();
  if (runs.length > 0 && runs.every((run) => run[6] === 0xff))
    return ['The watchdog has blackened the wall: the outside device is silent.'];
  return [];
}

function showBanner(words) {
  const text = words.join(' '), banner = at('banner');
  if (banner.dataset.text === text) return;
  banner.dataset.text = text;
  banner.hidden = words.length === 0;
  const code = document.createElement('code');
  code.textContent = words[1] ?? '';
  banner.replaceChildren(words[0] ?? '', ...(words.length > 1 ? [' ', code, ` ${words[2]}`] : []));
}

function showCaption({wall}) {
  const [width, height] = wall.screen, [cardWidth, cardHeight] = wall.card;
  at('caption').textContent = wall.cabinets === 0 ?
      '' :
      `${width} × ${height} px, ${wall.cabinets} cabinet${wall.cabinets === 1 ? '' : 's'} of ${
          cardWidth} × ${cardHeight}`;
  canvas.setAttribute(
      'aria-label', `The wall: ${at('caption').textContent}, on ${scene.ports.length} ports`);
}

function take(next, fresh) {
  const before = state;
  state = next;
  const changed = before === null || kSceneParts.some((part) => state[part] !== before[part]);
  if (changed) {
    scene = sceneOf(state);
    showCaption(state);
    redraw();
  }
  showBanner(bannerOf(state));
  showPanels(state, before);
  control.show(state, before);
  showLog(state, before, fresh);
  if (changed) showCabinet(selected(), state);
  shown();
}

function trouble(text) {
  const chip = at('chip-page');
  chip.hidden = text === '';
  chip.className = 'chip bad';
  chip.textContent = text;
}

function pick(cabinet) {
  picked = cabinet === undefined ? null : {port: cabinet.port, number: cabinet.number};
  if (cabinet !== undefined) view.reveal(cabinet);
  if (state !== null) showCabinet(cabinet, state);
  redraw();
}

// The mouse: a click picks, a drag moves, the wheel zooms.
const kDragFrom = 4;  // pixels
let drag = null;

canvas.addEventListener('pointerdown', (event) => {
  drag = {x: event.offsetX, y: event.offsetY, moved: false};
  canvas.setPointerCapture(event.pointerId);
});
canvas.addEventListener('pointermove', (event) => {
  if (drag === null) return;
  const dx = event.offsetX - drag.x, dy = event.offsetY - drag.y;
  if (!drag.moved && Math.hypot(dx, dy) < kDragFrom) return;
  canvas.classList.add('dragged');
  view.pan(dx, dy);
  drag = {x: event.offsetX, y: event.offsetY, moved: true};
  redraw();
});
canvas.addEventListener('pointerup', (event) => {
  if (drag !== null && !drag.moved && scene !== null)
    pick(cabinetAt(scene, ...view.toWall(event.offsetX, event.offsetY)));
  canvas.classList.remove('dragged');
  drag = null;
});
canvas.addEventListener('pointercancel', () => {
  drag = null;
});
canvas.addEventListener('wheel', (event) => {
  event.preventDefault();
  zoom(Math.exp(-Math.max(-200, Math.min(200, event.deltaY)) / 400), event.offsetX, event.offsetY);
}, {passive: false});

function zoom(factor, x, y) {
  if (scene === null) return;
  view.zoom(factor, x, y);
  redraw();
}

function fit() {
  if (scene === null) return;
  view.fit(scene);
  redraw();
}

function toggle(layer) {
  shows[layer] = !shows[layer];
  at(`show-${layer}`).setAttribute('aria-pressed', String(shows[layer]));
  redraw();
}

function step(dx, dy) {
  if (scene === null || scene.cabinets.length === 0) return;
  const from = selected();
  pick(from === undefined ? scene.cabinets[0] : neighbour(scene, from, dx, dy));
}

// To the first cabinet of the port before or behind.
function stepPort(by) {
  if (scene === null || scene.ports.length === 0) return;
  const now = scene.ports.findIndex((port) => port.number === picked?.port);
  pick(scene.ports[(now + by + scene.ports.length) % scene.ports.length].cabinets[0]);
}

const kArrows = {
  ArrowLeft: [-1, 0],
  ArrowRight: [1, 0],
  ArrowUp: [0, -1],
  ArrowDown: [0, 1]
};
const kPan = 60;  // pixels a key
const kKeys = {
  '+': () => zoom(1.25),
  '=': () => zoom(1.25),
  '-': () => zoom(0.8),
  '0': fit,
  c: () => toggle('cables'),
  w: () => toggle('windows'),
  Escape: () => pick(undefined),
  PageDown: () => stepPort(1),
  PageUp: () => stepPort(-1),
};

canvas.addEventListener('keydown', (event) => {
  if (event.ctrlKey || event.altKey || event.metaKey) return;
  const arrow = kArrows[event.key], key = kKeys[event.key.toLowerCase()] ?? kKeys[event.key];
  if (arrow !== undefined && event.shiftKey)
    view.pan(-arrow[0] * kPan, -arrow[1] * kPan);
  else if (arrow !== undefined)
    step(...arrow);
  else if (key !== undefined)
    key();
  else
    return;
  event.preventDefault();
  redraw();
});

at('zoom-in').addEventListener('click', () => zoom(1.25));
at('zoom-out').addEventListener('click', () => zoom(0.8));
at('zoom-fit').addEventListener('click', fit);
for (const layer of Object.keys(shows))
  at(`show-${layer}`).addEventListener('click', () => toggle(layer));
new ResizeObserver(() => {
  redraw();
  if (state !== null) drawCurves(at('curves'), state.picture.curves);
}).observe(canvas);

watch(take, trouble);

// For tests and curious people: what is shown, whether more of it is still to be drawn, and a word
// whenever that may have changed.
window.liveWall = {
  get state() {
    return state;
  },
  get scene() {
    return scene;
  },
  get moving() {
    return waiting;
  },
  view,
  zoom,
};
