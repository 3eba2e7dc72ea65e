// The cabinets on a sheet: their light, the glow around them, the dark ones, a test pattern.
import {css, portColour, toMonitor} from './colours.js';

const kMeshed = 22;        // from this size on, in monitor pixels, a cabinet's LEDs are hinted at
const kGlowCells = 48;     // the glow is a picture of so many pixels, drawn large
const kGlowMargin = 6;     // of them around the wall
const kMostMarks = 15000;  // of a test pattern
const kClosed = 'the output is closed';

// A cabinet's colour on the monitor: its port's, as bright as its card.
function panelColour(port, light, dimmed) {
  const lit = (c, i) => Math.round((c * 0.86 + 255 * 0.14) * toMonitor(light[i]) * dimmed);
  return css(portColour(port).map(lit));
}

// Lit cabinets by their colour. `lightOf` says what light a cabinet is drawn with.
function byColour(cabinets, lightOf, dimmed) {
  const groups = new Map();
  for (const cabinet of cabinets) {
    const light = lightOf(cabinet);
    if (light[0] + light[1] + light[2] === 0) continue;
    const colour = panelColour(cabinet.port, light, dimmed);
    if (!groups.has(colour)) groups.set(colour, []);
    groups.get(colour).push(cabinet);
  }
  return groups;
}

// The gaps between LEDs, as a fine dark mesh.
function ledMesh(context) {
  const tile = new OffscreenCanvas(4, 4), small = tile.getContext('2d');
  small.fillStyle = 'rgb(0 0 0 / 0.3)';
  small.fillRect(0, 3, 4, 1);
  small.fillRect(3, 0, 1, 3);
  return context.createPattern(tile, 'repeat');
}

// The wall as a picture of few pixels; drawn large it is a blur.
export function glowOf(scene, lightOf) {
  const cell = Math.max(scene.width, scene.height) / kGlowCells;
  const cells = (size) => Math.max(Math.ceil(size / cell), 1) + 2 * kGlowMargin;
  const picture = new OffscreenCanvas(cells(scene.width), cells(scene.height));
  const small = picture.getContext('2d');
  small.filter = 'blur(2.5px)';
  for (const [colour, cabinets] of byColour(scene.cabinets, lightOf, 1)) {
    small.fillStyle = colour;
    small.beginPath();
    for (const {x, y, width, height} of cabinets) {
      small.rect(kGlowMargin + x / cell, kGlowMargin + y / cell, width / cell, height / cell);
    }
    small.fill();
  }
  return {picture, cell};
}

export function drawGlow(sheet, {picture, cell}) {
  const context = sheet.context, size = cell * sheet.view.scale, margin = kGlowMargin * size;
  const [left, top] = sheet.toSheet(0, 0);
  context.imageSmoothingQuality = 'high';
  context.globalAlpha = 0.55;
  context.drawImage(
      picture, left - margin, top - margin, picture.width * size, picture.height * size);
  context.globalAlpha = 1;
}

export function drawPanels(sheet, scene, lightOf) {
  const context = sheet.context;
  context.fillStyle = '#090c12';
  context.fill(sheet.path(scene.cabinets));
  const dimmed = scene.pattern.kind === 'none' ? 1 : 0.45;
  const meshed = scene.size.width * sheet.view.scale >= kMeshed;
  sheet.mesh ??= ledMesh(context);
  for (const [colour, cabinets] of byColour(scene.cabinets, lightOf, dimmed)) {
    const path = sheet.path(cabinets);
    context.fillStyle = colour;
    context.fill(path);
    context.strokeStyle = 'rgb(4 6 10 / 0.55)';  // the seams between cabinets
    context.lineWidth = 1;
    context.stroke(path);
    if (!meshed) continue;
    context.fillStyle = sheet.mesh;
    context.fill(path);
  }
}

// A dark cabinet keeps the outline of its port; one that should be lit and isn't is crossed out.
export function drawDark(sheet, port) {
  const outlines = new Path2D(), crosses = new Path2D(), context = sheet.context;
  for (const cabinet of port.cabinets) {
    if (!cabinet.dark) continue;
    const [left, top, width, height] = sheet.box(cabinet);
    if (!sheet.reaches([left, top, width, height])) continue;
    outlines.rect(left + 0.5, top + 0.5, width - 1, height - 1);
    if (cabinet.dark === kClosed) continue;
    crosses.moveTo(left + 2, top + height - 2);
    crosses.lineTo(left + width - 2, top + 2);
  }
  context.lineWidth = 1;
  context.strokeStyle = css(portColour(port.number), 0.4);
  context.stroke(outlines);
  context.strokeStyle = 'rgb(255 107 125 / 0.6)';
  context.stroke(crosses);
}

// The places of a pattern along one axis, in wall pixels, from `from` up to `to`. Where steps are
// finer than `least`, one of so many stands for all.
function places(first, step, from, to, least) {
  const thinned = step * Math.max(1, Math.ceil(least / step)), all = [];
  const begin = Math.floor((from - first) / thinned);
  for (let i = begin; first + i * thinned < to; ++i) all.push(first + i * thinned);
  return {all, begin, thinned};
}

// Places and steps are the generator's; that it is white is our guess, which the page says.
export function drawPattern(sheet, scene) {
  const {kind, first, step} = scene.pattern, scale = sheet.view.scale, context = sheet.context;
  if (kind !== 'blocks' && kind !== 'pixels') return;
  const pixels = kind === 'pixels', reach = sheet.reach;
  const [left, top] = sheet.toWall(reach.left, reach.top).map((at) => Math.max(at, 0));
  const [right, bottom] = sheet.toWall(reach.right, reach.bottom);
  const endX = Math.min(right, scene.width), endY = Math.min(bottom, scene.height);
  const area = Math.max(endX - left, 0) * Math.max(endY - top, 0);
  const least = Math.max(5 / scale, Math.sqrt(area / kMostMarks));
  const x = places(first[0], step[0], left, endX, least);
  const y = places(first[1], step[1], top, endY, least);
  const width = pixels ? Math.max(scale, 1.5) : x.thinned * scale;
  const height = pixels ? width : y.thinned * scale;
  const path = new Path2D();
  y.all.forEach((atY, j) => x.all.forEach((atX, i) => {
    if (!pixels && ((x.begin + i + y.begin + j) & 1) !== 0) return;
    path.rect(...sheet.toSheet(atX, atY), width, height);
  }));
  context.save();
  context.clip(sheet.path(scene.cabinets.filter((cabinet) => !cabinet.dark)));
  context.fillStyle = pixels ? '#fff' : 'rgb(255 255 255 / 0.5)';
  context.fill(path);
  context.restore();
}
