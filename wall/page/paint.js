// Draws the scene: the glow of the wall, its cabinets, cables and windows.
//
// All that hangs on the scene is drawn onto a sheet somewhat larger than the canvas, and a frame lays
// the sheet where the view is. So moving costs no more for 2048 cabinets than for one; the sheet is
// drawn anew when the light changes, and when the view has come to rest somewhere else.
import { css, portColour, toMonitor } from "./colours.js";

const kLabelled = 20;   // from this size on, in monitor pixels, a cabinet bears its number
const kMeshed = 22;     // and its LEDs are hinted at
const kGlowCells = 48;  // the glow is a picture of so many pixels, drawn large
const kMargin = 0.2;    // how far the sheet reaches beyond the canvas, of its size
const kRest_ms = 120;   // a view that has not been zoomed for so long has come to rest
const kClosed = "the output is closed";

// A cabinet's colour on the monitor: its port's, as bright as its card.
function panelColour(port, light, dimmed) {
  const base = portColour(port);
  return css(base.map((c, i) => Math.round((c * 0.86 + 255 * 0.14) * toMonitor(light[i]) * dimmed)));
}

const keyOf = (cabinet) => cabinet.port * 1024 + cabinet.number;

export class Painter {
  constructor(canvas) {
    this.canvas = canvas;
    this.screen = canvas.getContext("2d");
    this.sheet = new OffscreenCanvas(1, 1);
    this.context = this.sheet.getContext("2d");
    this.glow = new OffscreenCanvas(1, 1);
    this.shown = new Map();  // light as it is drawn, which follows the cards'
    this.mesh = this.ledMesh();
    this.drawn = null;       // what the sheet holds: the scene, the view, what was shown
    this.zoomed_at = 0;
  }

  // The gaps between LEDs, as a fine dark mesh.
  ledMesh() {
    const tile = new OffscreenCanvas(4, 4), context = tile.getContext("2d");
    context.fillStyle = "rgb(0 0 0 / 0.3)";
    context.fillRect(0, 3, 4, 1);
    context.fillRect(3, 0, 1, 3);
    return this.context.createPattern(tile, "repeat");
  }

  resize() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.round(this.canvas.clientWidth * ratio), height = Math.round(this.canvas.clientHeight * ratio);
    if (this.canvas.width !== width) this.canvas.width = width;
    if (this.canvas.height !== height) this.canvas.height = height;
    this.ratio = ratio;
    this.rem = parseFloat(getComputedStyle(document.documentElement).fontSize);  // texts grow with the page's
  }

  // Moves the drawn light towards the cards'. Whether it has further to go.
  follow(scene) {
    if (scene === this.followed) return false;
    let moving = false, changed = this.shown.size !== scene.cabinets.length;
    const next = new Map();
    for (const cabinet of scene.cabinets) {
      const from = this.shown.get(keyOf(cabinet)) ?? [0, 0, 0];
      let light = from;
      if (from.some((was, i) => was !== cabinet.light[i])) {
        changed = true;
        light = from.map((was, i) => was + (cabinet.light[i] - was) * 0.4);
        if (light.every((now, i) => Math.abs(now - cabinet.light[i]) < 0.004)) light = cabinet.light;
        else moving = true;
      }
      next.set(keyOf(cabinet), light);
    }
    this.shown = next;
    if (changed) this.drawn = null;
    if (!moving) this.followed = scene;
    return moving;
  }

  lightOf(cabinet) {
    return this.shown.get(keyOf(cabinet)) ?? [0, 0, 0];
  }

  // Draws a frame. `shows` says which layers; `selected` is a cabinet or undefined. Whether another
  // frame is needed because the sheet only stands in for a sharper one.
  draw(scene, view, shows, selected) {
    const now = performance.now(), drawn = this.drawn;
    if (drawn !== null && drawn.scale !== view.scale && drawn.seen !== view.scale) {
      this.zoomed_at = now;
      drawn.seen = view.scale;
    }
    const hurried = now - this.zoomed_at < kRest_ms;
    const usable = this.usable(scene, view, shows, hurried);
    if (!usable) this.drawSheet(scene, view, shows);
    this.laySheet(view);
    if (selected) this.drawSelected(selected, view);
    return this.drawn.scale !== view.scale;
  }

  // Whether the sheet still does: of the same scene, and it covers what is seen. While somebody zooms a
  // somewhat larger or smaller one does, too.
  usable(scene, view, shows, hurried) {
    const drawn = this.drawn;
    if (drawn === null || drawn.scene !== scene || drawn.cables !== shows.cables || drawn.windows !== shows.windows) return false;
    if (drawn.width !== view.width || drawn.height !== view.height || drawn.ratio !== this.ratio) return false;
    const grown = view.scale / drawn.scale;
    if (grown !== 1) return hurried && grown > 0.6 && grown < 2;
    return Math.abs(view.x - drawn.x) <= view.width * kMargin && Math.abs(view.y - drawn.y) <= view.height * kMargin;
  }

  drawSheet(scene, view, shows) {
    const fresh = this.drawn === null;
    const left = Math.ceil(view.width * kMargin), top = Math.ceil(view.height * kMargin);
    const width = Math.round((view.width + 2 * left) * this.ratio), height = Math.round((view.height + 2 * top) * this.ratio);
    if (this.sheet.width !== width) this.sheet.width = width;
    if (this.sheet.height !== height) this.sheet.height = height;
    this.context.setTransform(1, 0, 0, 1, 0, 0);
    this.context.clearRect(0, 0, width, height);
    this.context.setTransform(this.ratio, 0, 0, this.ratio, left * this.ratio, top * this.ratio);
    this.reach = { left: -left, top: -top, right: view.width + left, bottom: view.height + top };
    if (fresh) this.drawGlow(scene);
    this.layGlow(scene, view);
    this.drawPanels(scene, view);
    if (scene.pattern.kind === "blocks" || scene.pattern.kind === "pixels") this.drawPattern(scene, view);
    this.drawDark(scene, view);
    if (shows.cables) for (const port of scene.ports) this.drawCable(port, view);
    if (shows.windows) this.drawWindows(scene, view);
    this.drawn = { scene, ...shows, x: view.x, y: view.y, scale: view.scale, seen: view.scale, width: view.width, height: view.height, ratio: this.ratio };
  }

  laySheet(view) {
    const { x, y, scale } = this.drawn, grown = view.scale / scale, screen = this.screen;
    screen.setTransform(1, 0, 0, 1, 0, 0);
    screen.clearRect(0, 0, this.canvas.width, this.canvas.height);
    screen.setTransform(this.ratio, 0, 0, this.ratio, 0, 0);
    const width = this.sheet.width / this.ratio, height = this.sheet.height / this.ratio;
    screen.imageSmoothingEnabled = grown !== 1;
    screen.drawImage(this.sheet, view.x + (this.reach.left - x) * grown, view.y + (this.reach.top - y) * grown, width * grown, height * grown);
  }

  // The wall as a picture of few pixels with a margin around it; drawn large it is a blur.
  drawGlow(scene) {
    const cell = Math.max(scene.width, scene.height) / kGlowCells, margin = 6;
    this.glow.width = Math.max(Math.ceil(scene.width / cell), 1) + 2 * margin;
    this.glow.height = Math.max(Math.ceil(scene.height / cell), 1) + 2 * margin;
    this.glow.cell = cell;
    this.glow.margin = margin;
    const small = this.glow.getContext("2d");
    small.filter = "blur(2.5px)";
    for (const [colour, cabinets] of this.byColour(scene.cabinets, 1)) {
      small.fillStyle = colour;
      small.beginPath();
      for (const c of cabinets) small.rect(margin + c.x / cell, margin + c.y / cell, c.width / cell, c.height / cell);
      small.fill();
    }
  }

  layGlow(scene, view) {
    const size = this.glow.cell * view.scale, margin = this.glow.margin * size;
    this.context.imageSmoothingQuality = "high";
    this.context.globalAlpha = 0.55;
    this.context.drawImage(this.glow, view.x - margin, view.y - margin, this.glow.width * size, this.glow.height * size);
    this.context.globalAlpha = 1;
  }

  // Whole monitor pixels, so that nothing is blurred.
  box(cabinet, view) {
    const left = Math.round(view.x + cabinet.x * view.scale), top = Math.round(view.y + cabinet.y * view.scale);
    const right = Math.round(view.x + (cabinet.x + cabinet.width) * view.scale);
    const bottom = Math.round(view.y + (cabinet.y + cabinet.height) * view.scale);
    return [left, top, Math.max(right - left, 1), Math.max(bottom - top, 1)];
  }

  reaches([left, top, width, height]) {
    return left < this.reach.right && top < this.reach.bottom && left + width > this.reach.left && top + height > this.reach.top;
  }

  // Lit cabinets, those of one colour together: one path is filled faster than a thousand boxes.
  byColour(cabinets, dimmed) {
    const groups = new Map();
    for (const cabinet of cabinets) {
      const light = this.lightOf(cabinet);
      if (light[0] + light[1] + light[2] === 0) continue;
      const colour = panelColour(cabinet.port, light, dimmed);
      if (!groups.has(colour)) groups.set(colour, []);
      groups.get(colour).push(cabinet);
    }
    return groups;
  }

  path(cabinets, view) {
    const path = new Path2D();
    for (const cabinet of cabinets) {
      const box = this.box(cabinet, view);
      if (this.reaches(box)) path.rect(...box);
    }
    return path;
  }

  drawPanels(scene, view) {
    const context = this.context;
    context.fillStyle = "#090c12";
    context.fill(this.path(scene.cabinets, view));
    const dimmed = scene.pattern.kind === "none" ? 1 : 0.45;
    const meshed = scene.size.width * view.scale >= kMeshed;
    for (const [colour, cabinets] of this.byColour(scene.cabinets, dimmed)) {
      const path = this.path(cabinets, view);
      context.fillStyle = colour;
      context.fill(path);
      context.strokeStyle = "rgb(4 6 10 / 0.55)";  // the seams between cabinets
      context.lineWidth = 1;
      context.stroke(path);
      if (!meshed) continue;
      context.fillStyle = this.mesh;
      context.fill(path);
    }
  }

  // A dark cabinet keeps the outline of its port; one that should be lit and isn't is crossed out.
  drawDark(scene, view) {
    const context = this.context;
    for (const port of scene.ports) {
      const outlines = new Path2D(), crosses = new Path2D();
      for (const cabinet of port.cabinets) {
        if (!cabinet.dark) continue;
        const [left, top, width, height] = this.box(cabinet, view);
        if (!this.reaches([left, top, width, height])) continue;
        outlines.rect(left + 0.5, top + 0.5, width - 1, height - 1);
        if (cabinet.dark === kClosed) continue;
        crosses.moveTo(left + 2, top + height - 2);
        crosses.lineTo(left + width - 2, top + 2);
      }
      context.lineWidth = 1;
      context.strokeStyle = css(portColour(port.number), 0.4);
      context.stroke(outlines);
      context.strokeStyle = "rgb(255 107 125 / 0.6)";
      context.stroke(crosses);
    }
  }

  // Places and steps are the generator's; that it is white is our guess, which the page says.
  drawPattern(scene, view) {
    const context = this.context, { kind, first, step } = scene.pattern, pixels = kind === "pixels";
    context.save();
    context.clip(this.path(scene.cabinets.filter((c) => !c.dark), view));
    context.fillStyle = pixels ? "#fff" : "rgb(255 255 255 / 0.5)";
    // Where steps are finer than the monitor, one of so many stands for all.
    const [stepX, stepY] = step.map((size) => size * Math.max(1, Math.ceil(4 / (size * view.scale))));
    const [fromX, fromY] = view.toWall(this.reach.left, this.reach.top), [toX, toY] = view.toWall(this.reach.right, this.reach.bottom);
    const beginX = Math.floor((Math.max(fromX, 0) - first[0]) / stepX), beginY = Math.floor((Math.max(fromY, 0) - first[1]) / stepY);
    const endX = Math.min(toX, scene.width), endY = Math.min(toY, scene.height);
    const width = pixels ? Math.max(view.scale, 1.5) : stepX * view.scale, height = pixels ? width : stepY * view.scale;
    const path = new Path2D();
    for (let j = beginY; first[1] + j * stepY < endY; ++j) {
      for (let i = beginX; first[0] + i * stepX < endX; ++i) {
        if (!pixels && ((i + j) & 1) !== 0) continue;
        path.rect(view.x + (first[0] + i * stepX) * view.scale, view.y + (first[1] + j * stepY) * view.scale, width, height);
      }
    }
    context.fill(path);
    context.restore();
  }

  // A port's window, and its name: inside the corner, or, where that would hide a badge, to the left of the
  // wall or above the window.
  drawWindows(scene, view) {
    const context = this.context;
    const small = Math.min(scene.size.width, scene.size.height) * view.scale < 5.9 * this.rem;
    const rem = this.rem, high = 1.35 * rem;
    context.font = `600 ${0.92 * rem}px Inter, system-ui, sans-serif`;
    context.textBaseline = "alphabetic";
    context.textAlign = "left";
    context.lineWidth = 2;
    for (const port of scene.ports) {
      const [x, y, width, height] = port.window;
      const left = view.x + x * view.scale, top = view.y + y * view.scale;
      context.strokeStyle = css(portColour(port.number), 0.95);
      context.strokeRect(left - 1, top - 1, width * view.scale + 1, height * view.scale + 1);
      const text = `port ${port.number}`, room = context.measureText(text).width + rem;
      if (height * view.scale < high) continue;
      const begin = small && x === 0 ? left - room : left - 2;
      const upper = small && x !== 0 ? top - high : top - 2;
      context.fillStyle = css(portColour(port.number));
      context.fillRect(begin, upper, room, high);
      context.fillStyle = "#05070a";
      context.fillText(text, begin + rem / 2, upper + rem);
    }
  }

  drawCable(port, view) {
    if (port.cabinets.length === 0) return;
    const points = port.cabinets.map((c) => [view.x + (c.x + c.width / 2) * view.scale, view.y + (c.y + c.height / 2) * view.scale]);
    const cell = Math.min(port.cabinets[0].width, port.cabinets[0].height) * view.scale;
    const thick = Math.min(Math.max(cell / 16, 1), 4), context = this.context;
    const path = new Path2D();
    points.forEach(([x, y], i) => (i === 0 ? path.moveTo(x, y) : path.lineTo(x, y)));
    context.lineJoin = context.lineCap = thick > 2 ? "round" : "butt";
    context.strokeStyle = "rgb(4 6 10 / 0.6)";
    context.lineWidth = thick + (cell >= kLabelled ? 3 : 2);
    context.stroke(path);
    const linked = port.cabinets[0].linked;
    if (!linked) context.setLineDash([thick * 2, thick * 3]);
    context.strokeStyle = linked ? "rgb(255 255 255 / 0.85)" : "rgb(255 107 125 / 0.9)";
    context.lineWidth = thick;
    context.stroke(path);
    context.setLineDash([]);
    this.drawStations(port, points, cell);
  }

  // A badge with its number on each cabinet: the first one filled, the last one ringed.
  drawStations(port, points, cell) {
    const context = this.context, last = points.length - 1, labelled = cell >= kLabelled;
    const radius = labelled ? Math.min(cell * 0.27, 1.3 * this.rem) : Math.max(cell * 0.26, 2);
    context.font = `600 ${(radius * (last > 99 ? 0.86 : 1.02)).toFixed(1)}px Inter, system-ui, sans-serif`;
    context.textAlign = "center";
    context.textBaseline = "middle";
    const words = css(portColour(port.number).map((c) => Math.round(c * 0.5 + 127)));
    points.forEach(([x, y], i) => {
      if (!labelled && i !== 0 && i !== last) return;
      if (!this.reaches([x - radius, y - radius, 2 * radius, 2 * radius])) return;
      context.beginPath();
      context.arc(x, y, radius, 0, 2 * Math.PI);
      context.fillStyle = i === 0 ? "#ffffff" : "rgb(7 10 16 / 0.9)";
      context.fill();
      if (i === last && i !== 0) {
        context.strokeStyle = "#ffffff";
        context.lineWidth = Math.max(radius / 8, 1);
        context.stroke();
      }
      if (!labelled) return;
      context.fillStyle = i === 0 ? "#05070a" : words;
      context.fillText(String(i), x, y + radius * 0.06);
    });
  }

  drawSelected(cabinet, view) {
    const [left, top, width, height] = this.box(cabinet, view), screen = this.screen;
    for (const [colour, line] of [["#000", 6], ["#fff", 3]]) {
      screen.strokeStyle = colour;
      screen.lineWidth = line;
      screen.strokeRect(left - 1, top - 1, width + 2, height + 2);
    }
  }
}
