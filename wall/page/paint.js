// Draws the scene onto the canvas: the room, the glow of the wall, its cabinets, cables and windows.
import { css, portColour, toMonitor } from "./colours.js";

const kLabelled = 20;  // from this size on, in monitor pixels, a cabinet bears its number
const kGlowCells = 48;  // the glow is a picture of so many pixels, drawn large

// A cabinet's colour on the monitor: its port's, as bright as its card.
function panelColour(cabinet, light, dimmed) {
  const base = portColour(cabinet.port);
  return base.map((c, i) => Math.round((c * 0.86 + 255 * 0.14) * toMonitor(light[i]) * dimmed));
}

export class Painter {
  constructor(canvas) {
    this.canvas = canvas;
    this.context = canvas.getContext("2d", { alpha: false });
    this.glow = new OffscreenCanvas(1, 1);
    this.shown = new Map();  // light as it is drawn, which follows the card's
    this.tile = this.ledTile();
  }

  // The gaps between LEDs, as a fine dark mesh.
  ledTile() {
    const tile = new OffscreenCanvas(3, 3), context = tile.getContext("2d");
    context.fillStyle = "rgb(0 0 0 / 0.34)";
    context.fillRect(0, 2, 3, 1);
    context.fillRect(2, 0, 1, 2);
    return this.context.createPattern(tile, "repeat");
  }

  resize() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.round(this.canvas.clientWidth * ratio), height = Math.round(this.canvas.clientHeight * ratio);
    if (this.canvas.width !== width) this.canvas.width = width;
    if (this.canvas.height !== height) this.canvas.height = height;
    this.ratio = ratio;
  }

  // Moves the drawn light towards the cards'. Whether it has further to go.
  follow(scene) {
    let moving = false;
    const next = new Map();
    for (const cabinet of scene.cabinets) {
      const key = cabinet.port * 1024 + cabinet.number;
      const from = this.shown.get(key) ?? [0, 0, 0];
      const light = from.map((was, i) => {
        const far = cabinet.light[i] - was;
        if (Math.abs(far) < 0.004) return cabinet.light[i];
        moving = true;
        return was + far * 0.4;
      });
      next.set(key, light);
    }
    this.shown = next;
    return moving;
  }

  lightOf(cabinet) {
    return this.shown.get(cabinet.port * 1024 + cabinet.number) ?? [0, 0, 0];
  }

  // Draws all. `shows` says which layers; `selected` is a cabinet or undefined.
  draw(scene, view, shows, selected) {
    const context = this.context;
    context.setTransform(this.ratio, 0, 0, this.ratio, 0, 0);
    this.drawRoom(view);
    this.drawGlow(scene, view);
    const seen = scene.cabinets.filter((cabinet) => view.sees(cabinet));
    this.drawPanels(scene, seen, view);
    if (scene.pattern.kind === "blocks" || scene.pattern.kind === "pixels") this.drawPattern(scene, seen, view);
    this.drawMarks(seen, view);
    if (shows.windows) this.drawWindows(scene, view);
    if (shows.cables) for (const port of scene.ports) this.drawCable(port, view);
    if (selected) this.drawSelected(selected, view);
  }

  drawRoom(view) {
    const room = this.context.createLinearGradient(0, 0, 0, view.height);
    room.addColorStop(0, "#05070a");
    room.addColorStop(0.8, "#090c12");
    room.addColorStop(1, "#0d1118");
    this.context.fillStyle = room;
    this.context.fillRect(0, 0, view.width, view.height);
  }

  // The wall as a picture of few pixels with a margin around it; drawn large it is a blur.
  drawGlow(scene, view) {
    const cell = Math.max(scene.width, scene.height) / kGlowCells;
    const across = Math.max(Math.ceil(scene.width / cell), 1), down = Math.max(Math.ceil(scene.height / cell), 1);
    const margin = 4;
    this.glow.width = across + 2 * margin;
    this.glow.height = down + 2 * margin;
    const small = this.glow.getContext("2d");
    small.filter = "blur(2px)";
    for (const cabinet of scene.cabinets) {
      if (cabinet.dark) continue;
      small.fillStyle = css(panelColour(cabinet, this.lightOf(cabinet), 1));
      small.fillRect(margin + cabinet.x / cell, margin + cabinet.y / cell, cabinet.width / cell, cabinet.height / cell);
    }
    const context = this.context, size = cell * view.scale;
    context.save();
    context.imageSmoothingEnabled = true;
    context.imageSmoothingQuality = "high";
    context.globalCompositeOperation = "lighter";
    context.globalAlpha = 0.42;
    context.drawImage(this.glow, view.x - margin * size, view.y - margin * size, this.glow.width * size, this.glow.height * size);
    context.restore();
  }

  box(cabinet, view) {
    const gap = cabinet.width * view.scale > 8 ? 1 : 0;
    const left = Math.round(view.x + cabinet.x * view.scale), top = Math.round(view.y + cabinet.y * view.scale);
    const right = Math.round(view.x + (cabinet.x + cabinet.width) * view.scale);
    const bottom = Math.round(view.y + (cabinet.y + cabinet.height) * view.scale);
    return [left, top, Math.max(right - left - gap, 1), Math.max(bottom - top - gap, 1)];
  }

  drawPanels(scene, seen, view) {
    const context = this.context;
    const dimmed = scene.pattern.kind === "none" ? 1 : 0.45;
    for (const cabinet of seen) {
      const lit = !cabinet.dark;
      context.fillStyle = lit ? css(panelColour(cabinet, this.lightOf(cabinet), dimmed)) : "#0a0d13";
      context.fillRect(...this.box(cabinet, view));
    }
    if (seen.length === 0 || seen[0].width * view.scale < 10) return;
    context.fillStyle = this.tile;
    for (const cabinet of seen) if (!cabinet.dark) context.fillRect(...this.box(cabinet, view));
  }

  // A dark cabinet keeps the outline of its port; one that should be lit and isn't is crossed out.
  drawMarks(seen, view) {
    const context = this.context;
    for (const cabinet of seen) {
      if (!cabinet.dark) continue;
      const [left, top, width, height] = this.box(cabinet, view);
      context.strokeStyle = css(portColour(cabinet.port), 0.45);
      context.lineWidth = 1;
      context.strokeRect(left + 0.5, top + 0.5, width - 1, height - 1);
      if (cabinet.dark === "the output is closed") continue;
      context.strokeStyle = "rgb(255 107 125 / 0.55)";
      context.beginPath();
      context.moveTo(left + 2, top + height - 2);
      context.lineTo(left + width - 2, top + 2);
      context.stroke();
    }
  }

  // Places and steps are the generator's; that it is white is our guess, which the page says.
  drawPattern(scene, seen, view) {
    const context = this.context, { kind, first, step } = scene.pattern;
    context.save();
    context.beginPath();
    for (const cabinet of seen) if (!cabinet.dark) context.rect(...this.box(cabinet, view));
    context.clip();
    // Where steps are finer than the monitor, every so many of them stand for all.
    const coarse = [0, 1].map((axis) => Math.max(1, Math.ceil(4 / (step[axis] * view.scale))));
    const stepX = step[0] * coarse[0], stepY = step[1] * coarse[1];
    const [fromX, fromY] = view.toWall(0, 0), [toX, toY] = view.toWall(view.width, view.height);
    const beginX = Math.floor((Math.max(fromX, 0) - first[0]) / stepX) , beginY = Math.floor((Math.max(fromY, 0) - first[1]) / stepY);
    const endX = Math.min(toX, scene.width), endY = Math.min(toY, scene.height);
    const size = kind === "pixels" ? Math.max(view.scale, 1.5) : 0;
    context.fillStyle = kind === "pixels" ? "#fff" : "rgb(255 255 255 / 0.5)";
    for (let j = beginY; first[1] + j * stepY < endY; ++j) {
      for (let i = beginX; first[0] + i * stepX < endX; ++i) {
        const x = view.x + (first[0] + i * stepX) * view.scale, y = view.y + (first[1] + j * stepY) * view.scale;
        if (kind === "pixels") context.fillRect(x, y, size, size);
        else if (((i + j) & 1) === 0) context.fillRect(x, y, stepX * view.scale, stepY * view.scale);
      }
    }
    context.restore();
  }

  drawWindows(scene, view) {
    const context = this.context;
    context.font = "600 12px Inter, system-ui, sans-serif";
    context.textBaseline = "alphabetic";
    context.textAlign = "left";
    for (const port of scene.ports) {
      const [x, y, width, height] = port.window;
      const left = view.x + x * view.scale, top = view.y + y * view.scale;
      context.strokeStyle = css(portColour(port.number), 0.95);
      context.lineWidth = 2;
      context.strokeRect(left - 1, top - 1, width * view.scale + 1, height * view.scale + 1);
      if (height * view.scale < 34 || width * view.scale < 60) continue;
      const text = `port ${port.number}`, room = context.measureText(text).width + 12;
      context.fillStyle = css(portColour(port.number));
      context.fillRect(left - 2, top - 2, room, 18);
      context.fillStyle = "#05070a";
      context.fillText(text, left + 4, top + 11);
    }
  }

  drawCable(port, view) {
    const points = port.cabinets.map((c) => [view.x + (c.x + c.width / 2) * view.scale, view.y + (c.y + c.height / 2) * view.scale]);
    if (points.length === 0) return;
    const cell = Math.min(port.cabinets[0].width, port.cabinets[0].height) * view.scale;
    const thick = Math.min(Math.max(cell / 16, 1), 4);
    const context = this.context;
    context.lineJoin = context.lineCap = "round";
    const line = (colour, width) => {
      context.strokeStyle = colour;
      context.lineWidth = width;
      context.beginPath();
      points.forEach(([x, y], i) => (i === 0 ? context.moveTo(x, y) : context.lineTo(x, y)));
      context.stroke();
    };
    if (cell >= 8) line("rgb(4 6 10 / 0.65)", thick + 3);
    const linked = port.cabinets[0].linked;
    if (!linked) context.setLineDash([thick * 2, thick * 3]);
    line(linked ? "rgb(255 255 255 / 0.85)" : "rgb(255 107 125 / 0.9)", thick);
    context.setLineDash([]);
    this.drawStations(port, points, cell, view);
  }

  // A badge with its number on each cabinet: the first one filled, the last one ringed.
  drawStations(port, points, cell, view) {
    const context = this.context, last = points.length - 1;
    const labelled = cell >= kLabelled;
    const radius = labelled ? Math.min(cell * 0.24, 17) : Math.max(cell * 0.22, 2);
    context.font = `600 ${Math.round(radius * 1.05)}px Inter, system-ui, sans-serif`;
    context.textAlign = "center";
    context.textBaseline = "middle";
    points.forEach(([x, y], i) => {
      if (!labelled && i !== 0 && i !== last) return;
      if (x < -radius || y < -radius || x > view.width + radius || y > view.height + radius) return;
      context.beginPath();
      context.arc(x, y, radius, 0, 2 * Math.PI);
      context.fillStyle = i === 0 ? "#ffffff" : "rgb(7 10 16 / 0.88)";
      context.fill();
      if (i === last && i !== 0) {
        context.strokeStyle = "#ffffff";
        context.lineWidth = Math.max(radius / 8, 1);
        context.stroke();
      }
      if (!labelled) return;
      context.fillStyle = i === 0 ? "#05070a" : css(portColour(port.number).map((c) => Math.round(c * 0.5 + 127)));
      context.fillText(String(i), x, y + radius * 0.06);
    });
  }

  drawSelected(cabinet, view) {
    const [left, top, width, height] = this.box(cabinet, view), context = this.context;
    for (const [colour, line] of [["#000", 6], ["#fff", 3]]) {
      context.strokeStyle = colour;
      context.lineWidth = line;
      context.strokeRect(left - 1, top - 1, width + 2, height + 2);
    }
  }
}
