// The texts and tables beside the wall. Each part is filled anew when its piece of the state is a
// new object, and left alone otherwise.
import {css, portColour} from './colours.js';
import {linkOf} from './scene.js';

const at = (id) => document.getElementById(id);

// An element with attributes and children; texts are texts, whatever they hold.
export function element(name, attributes = {}, ...children) {
  const made = document.createElement(name);
  for (const [key, value] of Object.entries(attributes)) made.setAttribute(key, value);
  made.append(...children);
  return made;
}

const percent = (byte) => `${Math.round((byte * 100) / 255)} %`;

function chip(id, kind, text) {
  const chip = at(id);
  chip.className = `chip ${kind}`;
  chip.textContent = text;
}

function showBoard({board, screen, outside}) {
  at('folder').textContent = board.folder;
  at('folder').title = board.folder;
  chip(
      'chip-daemon', board.daemon.running ? 'good' : 'bad',
      board.daemon.running ? `daemon ${board.daemon.pid}` : 'no daemon');
  chip('chip-output', screen.open ? 'good' : 'warn', screen.open ? 'output open' : 'output closed');
  chip(
      'chip-light', outside.lux === 'fail' ? 'bad' : '',
      outside.lux === 'fail' ? 'light sensor fails' : `${outside.lux} lux`);
  chip(
      'chip-trace', board.trace.length > 0 ? 'good' : '',
      board.trace.length > 0 ? 'trace on' : 'trace off');
  at('chip-trace').title =
      board.trace.length > 0 ? board.trace.join(' ') : 'trace = none in board.conf';
}

function showTime({time, board}) {
  at('time').textContent = (time.about ? 'about ' : '') + time.text;
  at('speed').textContent = board.speed > 1 ? `${board.speed} × as fast` : '';
  at('clock').title = time.about ?
      'At this speed only the daemon knows the time; this is counted from its start, and it may be behind.' :
      'the board\'s clock';
}

function lamps(names, on) {
  const cell = element('td', {class: 'links'});
  names.forEach((name, i) => cell.append(element('i', {
    class: on[i] ? 'lamp on' : 'lamp',
    role: 'img',
    'aria-label': `${name} ${on[i] ? 'linked' : 'not linked'}`,
    title: `${name} ${on[i] ? 'linked' : 'not linked'}`
  })));
  return cell;
}

function windowText([x, y, width, height]) {
  return `${width} × ${height} at ${x}, ${y}`;
}

function portRow(number, port, links, control) {
  const swatch = element('span', {class: 'swatch'});
  swatch.style.background = css(portColour(port?.repeats ?? number));
  const words = port === undefined ? 'nothing' :
      port.repeats !== undefined   ? `as port ${port.repeats}` :
                                     windowText(port.window);
  const row = element(
      'tr', {'data-port': number}, element('th', {scope: 'row'}, swatch, String(number)),
      element('td', {}, port === undefined ? '–' : String(port.cards)),
      element(
          'td', port?.repeats === undefined && port !== undefined ? {} : {class: 'words'},
          words + (port?.backup ? ', backup' : '')),
      lamps(['copper'], [links.copper.includes(number)]),
      lamps(
          ['fiber 1', 'fiber 2'], [links.fiber1.includes(number), links.fiber2.includes(number)]));
  if (port?.repeats !== undefined || port === undefined) row.className = 'repeats';
  if (control.on) {
    const up = links.copper.includes(number);
    row.append(element(
        'td', {},
        element(
            'button', {'data-link': number, 'data-up': up ? '' : 'yes'}, up ? 'Pull' : 'Plug')));
  }
  return row;
}

// The ports that have tables, and those behind them: each by itself where one has a link.
function showPorts({wall, links, control}) {
  const kTables = 10, kPorts = 16;
  const numbers = [...Array(kPorts).keys()];
  const more = numbers.slice(kTables), linked = more.some((n) => linkOf(links, n).length > 0);
  const shown = linked ? numbers : numbers.slice(0, kTables);
  const rows = shown.map((number) => portRow(number, wall.ports[number], links, control));
  if (!linked) {
    rows.push(element(
        'tr', {class: 'repeats'}, element('th', {scope: 'row'}, `${kTables}–${kPorts - 1}`),
        element('td', {}, '–'), element('td', {}, 'no table, no link')));
  }
  const body = at('ports').tBodies[0], focused = document.activeElement?.dataset?.link;
  body.replaceChildren(...rows);
  if (focused !== undefined) body.querySelector(`[data-link="${focused}"]`)?.focus();
  at('ports-note').textContent = `fibers ${links.fiber}`;
}

// The light of the cards that take part: from, to, and how many.
function lightOf(cards) {
  let least = 255, most = 0, count = 0, lost = 0;
  for (const run of Object.values(cards.ports).flat()) {
    if (run[8] !== 1) continue;
    [least, most] = [Math.min(least, run[1]), Math.max(most, run[1])];
    count += run[0];
    if (run[6] === 0xff) lost += run[0];
  }
  return {least, most, count, lost};
}

function showBrightness({cards}) {
  const {least, most, count, lost} = lightOf(cards);
  at('level').style.width = count === 0 ? '0' : `${(most * 100) / 255}%`;
  let text = count === 0 ? 'No card takes part.' :
      least === most     ? `${most} of 255 (${percent(most)}) on all cards` :
                           `${least} to ${most} of 255 (${percent(least)} to ${percent(most)})`;
  if (lost > 0) text += `; ${lost} blackened by the watchdog`;
  at('level-text').textContent = text;
}

function inText(minutes) {
  const days = Math.floor(minutes / 1440), hours = Math.floor(minutes / 60) % 24;
  return [days > 0 ? `${days} d` : '', hours > 0 ? `${hours} h` : '', `${minutes % 60} min`]
      .filter(Boolean)
      .join(' ');
}

function showPlan({plan, time}) {
  at('plan-text').textContent = plan.kind === 'none' ? 'No plan is stored.' :
                                                       `Plan: ${plan.text}` +
          (plan.force ? `; since ${plan.force.since} ${plan.force.what}${
                            plan.force.today ? '' : ' (not today)'}` :
                        '');
  at('plan-next').textContent = plan.next ?
      `Next: ${plan.next.time}, ${time.about ? 'in about' : 'in'} ${inText(plan.next.in_min)}: ${
          plan.next.what}` :
      '';
}

function noted(id, text, note) {
  at(id).replaceChildren(text, ...(note ? [element('span', {class: 'note'}, note)] : []));
}

function showPicture({picture}) {
  noted('curves-text', picture.curves.text);
  noted('hdr-text', picture.hdr.text, picture.hdr.note);
  noted('pattern-text', picture.pattern.text, picture.pattern.note);
  drawCurves(at('curves'), picture.curves);
  at('curves').setAttribute('aria-label', `Gamma curves: ${picture.curves.text}`);
}

export function drawCurves(canvas, curves) {
  const ratio = window.devicePixelRatio || 1, width = canvas.clientWidth,
        height = canvas.clientHeight;
  canvas.width = Math.round(width * ratio);
  canvas.height = Math.round(height * ratio);
  const context = canvas.getContext('2d');
  context.scale(ratio, ratio);
  context.strokeStyle = '#1d2633';
  for (let i = 0; i <= 4; ++i) {
    const x = 0.5 + ((width - 1) * i) / 4, y = 0.5 + ((height - 1) * i) / 4;
    context.strokeRect(x, 0.5, 0, height - 1);
    context.strokeRect(0.5, y, width - 1, 0);
  }
  context.globalCompositeOperation = 'lighter';  // where all agree the curve is white
  context.lineWidth = 2;
  for (const [name, colour] of [['red', '#ff3b46'], ['green', '#1fbf5c'], ['blue', '#3f7dff']]) {
    context.strokeStyle = colour;
    context.beginPath();
    curves[name].forEach(
        (light, i) => context.lineTo(
            (i * width) / (curves[name].length - 1), 2 + (height - 4) * (1 - light / 65535)));
    context.stroke();
  }
}

function showInputs({inputs, screen}) {
  const source = screen.source;
  at('source-text').textContent = source.width > 0 ?
      `A source of ${source.width} × ${source.height} is on.` :
      'No source is on.';
  const rows = Object.values(inputs).map(
      (input) => element(
          'li', {}, element('b', {}, input.type), ` ${input.id} ${input.name ?? ''}`,
          element('span', {class: 'note'}, [input.mode, input.fault].filter(Boolean).join('; '))));
  at('inputs').replaceChildren(...(rows.length > 0 ? rows : ['No input board.']));
}

// A part and the pieces of the state that it hangs on.
const kParts = [
  [showBoard, ['board', 'screen', 'outside']],
  [showTime, ['time', 'board']],
  [showPorts, ['wall', 'links', 'control']],
  [showBrightness, ['cards']],
  [showPlan, ['plan', 'time']],
  [showPicture, ['picture']],
  [showInputs, ['inputs', 'screen']],
];

export function showPanels(state, before) {
  for (const [show, pieces] of kParts) {
    if (before === null || pieces.some((piece) => state[piece] !== before[piece])) show(state);
  }
}

export function showCabinet(cabinet, state) {
  at('cabinet-none').hidden = cabinet !== undefined;
  at('cabinet-facts').hidden = cabinet === undefined;
  if (cabinet === undefined) return;
  const {card} = cabinet, link = linkOf(state.links, cabinet.port).join(', ') || 'none';
  const colours = card && card.colours.some((c) => c !== 255) ?
      `; red ${card.colours[0]}, green ${card.colours[1]}, blue ${card.colours[2]}` :
      '';
  const facts = [
    ['Port', `${cabinet.port}, link ${link}`],
    ['Card', `number ${cabinet.number} on the cable`],
    ['Position', `${cabinet.x}, ${cabinet.y}`],
    [
      'Size',
      `${cabinet.width} × ${cabinet.height} px` +
          (card && (card.width !== cabinet.width || card.height !== cabinet.height) ?
               `; the card says ${card.width} × ${card.height}` :
               '')
    ],
    [
      'Brightness',
      card ? `${card.brightness} of 255 (${percent(card.brightness)})${colours}` : 'no card'
    ],
    ['Shows', cabinet.dark ? `nothing: ${cabinet.dark}` : 'its part of the picture'],
  ];
  const rows =
      facts.flatMap(([name, value]) => [element('dt', {}, name), element('dd', {}, value)]);
  const text = facts.map((fact) => fact.join(' ')).join('\n'), shown = at('cabinet-facts');
  if (shown.dataset.text === text) return;  // not read out again
  shown.dataset.text = text;
  shown.replaceChildren(...rows);
}
