// The ports on a sheet: their windows, their cables, the cards' numbers.
import {css, portColour} from './colours.js';

const kLabelled = 20;  // from this size on, in monitor pixels, a cabinet bears its number
const kFont = 'Inter, system-ui, sans-serif';

// A port's window, and its name: inside the corner, or, where that would hide a badge, to the left
// of the wall or above the window.
export function drawWindow(sheet, scene, port) {
  const context = sheet.context, scale = sheet.view.scale, rem = sheet.rem, high = 1.35 * rem;
  const [x, y, width, height] = port.window, [left, top] = sheet.toSheet(x, y);
  context.lineWidth = 2;
  context.strokeStyle = css(portColour(port.number), 0.95);
  context.strokeRect(left - 1, top - 1, width * scale + 1, height * scale + 1);
  if (height * scale < high) return;
  context.font = `600 ${0.92 * rem}px ${kFont}`;
  context.textBaseline = 'alphabetic';
  context.textAlign = 'left';
  const text = `port ${port.number}`, room = context.measureText(text).width + rem;
  const small = Math.min(scene.size.width, scene.size.height) * scale < 5.9 * rem;
  const begin = small && x === 0 ? left - room : left - 2;
  const upper = small && x !== 0 ? top - high : top - 2;
  context.fillStyle = css(portColour(port.number));
  context.fillRect(begin, upper, room, high);
  context.fillStyle = '#05070a';
  context.fillText(text, begin + rem / 2, upper + rem);
}

export function drawCable(sheet, port) {
  if (port.cabinets.length === 0) return;
  const {width, height, linked} = port.cabinets[0];
  const points = port.cabinets.map((c) => sheet.toSheet(c.x + width / 2, c.y + height / 2));
  const cell = Math.min(width, height) * sheet.view.scale;
  const thick = Math.min(Math.max(cell / 16, 1), 4), context = sheet.context;
  const path = new Path2D();
  points.forEach(([x, y], i) => (i === 0 ? path.moveTo(x, y) : path.lineTo(x, y)));
  context.lineJoin = context.lineCap = thick > 2 ? 'round' : 'butt';
  context.strokeStyle = 'rgb(4 6 10 / 0.6)';
  context.lineWidth = thick + (cell >= kLabelled ? 3 : 2);
  context.stroke(path);
  if (!linked) context.setLineDash([thick * 2, thick * 3]);
  context.strokeStyle = linked ? 'rgb(255 255 255 / 0.85)' : 'rgb(255 107 125 / 0.9)';
  context.lineWidth = thick;
  context.stroke(path);
  context.setLineDash([]);
  drawStations(sheet, port, points, cell);
}

// A badge with its number on each cabinet: the first one filled, the last one ringed.
function drawStations(sheet, port, points, cell) {
  const context = sheet.context, last = points.length - 1, labelled = cell >= kLabelled;
  const radius = labelled ? Math.min(cell * 0.27, 1.3 * sheet.rem) : Math.max(cell * 0.26, 2);
  context.font = `600 ${(radius * (last > 99 ? 0.86 : 1.02)).toFixed(1)}px ${kFont}`;
  context.textAlign = 'center';
  context.textBaseline = 'middle';
  const words = css(portColour(port.number).map((c) => Math.round(c * 0.5 + 127)));
  points.forEach(([x, y], i) => {
    if (!labelled && i !== 0 && i !== last) return;
    if (!sheet.reaches([x - radius, y - radius, 2 * radius, 2 * radius])) return;
    context.beginPath();
    context.arc(x, y, radius, 0, 2 * Math.PI);
    context.fillStyle = i === 0 ? '#ffffff' : 'rgb(7 10 16 / 0.9)';
    context.fill();
    if (i === last && i !== 0) {
      context.strokeStyle = '#ffffff';
      context.lineWidth = Math.max(radius / 8, 1);
      context.stroke();
    }
    if (!labelled) return;
    context.fillStyle = i === 0 ? '#05070a' : words;
    context.fillText(String(i), x, y + radius * 0.06);
  });
}
