// What happened: the daemon's reports and the clients' requests from the trace, and what this page
// has seen change by itself.
import {element} from './panels.js';
import {linkOf} from './scene.js';

const kMostRows = 100;
const kWords = {
  request: 'request',
  refusal: 'refused',
  report: 'report',
  seen: 'seen'
};
const at = (id) => document.getElementById(id);

function addRow(kind, time, text) {
  const rows = at('log-rows');
  rows.prepend(element(
      'li', {class: kind}, element('time', {}, time), element('b', {}, kWords[kind] ?? kind),
      element('span', {title: text}, text)));
  while (rows.children.length > kMostRows) rows.lastChild.remove();
}

// What an observer of the wall would say.
function changes(state, before) {
  const said = [];
  const turn = (was, is, yes, no) => {
    if (was !== is) said.push(is ? yes : no);
  };
  turn(before.board.exists, state.board.exists, 'The board is there', 'The board is gone');
  turn(
      before.board.daemon.running, state.board.daemon.running, 'The daemon runs',
      'The daemon has ended');
  turn(before.screen.open, state.screen.open, 'The output is open', 'The output is closed');
  for (let port = 0; port < 16; ++port) {
    turn(
        linkOf(before.links, port).length > 0, linkOf(state.links, port).length > 0,
        `Port ${port} has a link`, `Port ${port} has lost its link`);
  }
  if (before.wall.cabinets !== state.wall.cabinets || before.wall.kind !== state.wall.kind)
    said.push(`The wall has ${state.wall.cabinets} cabinets`);
  if (before.picture.pattern.text !== state.picture.pattern.text)
    said.push(`Test pattern: ${state.picture.pattern.text}`);
  if (before.picture.hdr.text !== state.picture.hdr.text)
    said.push(`HDR: ${state.picture.hdr.text}`);
  return said;
}

function noteOn({board, log}) {
  if (!board.trace.includes('bus')) {
    return `– the trace doesn't tell of the bus: put “trace = bus” into board.conf and start the daemon anew`;
  }
  return log.passed_over > 0 ?
      `– ${Math.round(log.passed_over / 1024)} KiB of the trace came too fast to be read` :
      '';
}

export function showLog(state, before, fresh) {
  if (before !== null && state.board.exists && before.board.exists !== undefined) {
    const said = changes(state, before);
    for (const text of said) addRow('seen', new Date().toTimeString().slice(0, 8), text);
    if (said.length > 0) at('announcer').textContent = said.join('. ');
  }
  if (fresh)
    for (const row of document.querySelectorAll(
             '#log-rows .request, #log-rows .report, #log-rows .refusal'))
      row.remove();
  if (fresh || state.log !== before?.log || state.board !== before?.board) {
    const known = fresh ? {} : before.log.entries;
    for (const number of Object.keys(state.log.entries).map(Number).sort((a, b) => a - b)) {
      const entry = state.log.entries[number];
      if (known[number] === undefined) addRow(entry.kind, entry.at, entry.text);
    }
    at('log-note').textContent = noteOn(state);
  }
}
