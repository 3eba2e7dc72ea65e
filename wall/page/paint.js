// Draws frames of the scene.
//
// All that hangs on the scene is drawn onto a sheet, and a frame lays the sheet where the view is.
// So moving costs no more for 2048 cabinets than for one; the sheet is drawn anew when the light
// changes, and when the view has come to rest somewhere else.
import {drawDark, drawGlow, drawPanels, drawPattern, glowOf} from './cabinets.js';
import {drawCable, drawWindow} from './cables.js';
import {Sheet} from './sheet.js';

const kRest_ms = 120;  // a view that has not been zoomed for so long has come to rest
const kDark = [0, 0, 0];

const keyOf = (cabinet) => cabinet.port * 1024 + cabinet.number;

export class Painter {
  constructor(canvas) {
    this.canvas = canvas;
    this.screen = canvas.getContext('2d');
    this.sheet = new Sheet();
    this.light = new Map();  // as it is drawn, which follows the cards'
    this.glow = null;        // of this light
    this.drawn = null;       // what the sheet holds: a scene and which layers
    this.zoomed_at = 0;
    this.lightOf = (cabinet) => this.light.get(keyOf(cabinet)) ?? kDark;
  }

  resize() {
    const ratio = window.devicePixelRatio || 1;
    const width = Math.round(this.canvas.clientWidth * ratio);
    const height = Math.round(this.canvas.clientHeight * ratio);
    if (this.canvas.width !== width) this.canvas.width = width;
    if (this.canvas.height !== height) this.canvas.height = height;
    this.ratio = ratio;
    this.rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
  }

  // Moves the drawn light towards the cards'. Whether it has further to go.
  follow(scene) {
    if (scene === this.followed) return false;
    let moving = false, changed = this.light.size !== scene.cabinets.length;
    const next = new Map();
    for (const cabinet of scene.cabinets) {
      const from = this.lightOf(cabinet), to = cabinet.light;
      let light = from;
      if (from.some((was, i) => was !== to[i])) {
        changed = true;
        light = from.map((was, i) => was + (to[i] - was) * 0.4);
        const there = light.every((now, i) => Math.abs(now - to[i]) < 0.004);
        if (there) light = to;
        moving ||= !there;
      }
      next.set(keyOf(cabinet), light);
    }
    this.light = next;
    if (changed) this.drawn = this.glow = null;
    if (!moving) this.followed = scene;
    return moving;
  }

  // Draws a frame. `shows` says which layers; `selected` is a cabinet or undefined. Whether another
  // frame is needed because the sheet only stands in for a sharper one.
  draw(scene, view, shows, selected) {
    if (!this.usable(scene, view, shows)) this.drawSheet(scene, view, shows);
    const screen = this.screen;
    screen.setTransform(1, 0, 0, 1, 0, 0);
    screen.clearRect(0, 0, this.canvas.width, this.canvas.height);
    screen.setTransform(this.ratio, 0, 0, this.ratio, 0, 0);
    this.sheet.layOn(screen, view);
    if (selected) this.drawSelected(selected, view);
    return this.sheet.view.scale !== view.scale;
  }

  // Whether the sheet still does: of the same scene, and it covers what is seen. While somebody
  // zooms a somewhat larger or smaller one does, too.
  usable(scene, view, shows) {
    const drawn = this.drawn;
    if (drawn?.scene !== scene) return false;
    if (drawn.cables !== shows.cables || drawn.windows !== shows.windows) return false;
    const now = performance.now(), grown = view.scale / this.sheet.view.scale;
    if (view.scale !== drawn.seen) this.zoomed_at = now;
    drawn.seen = view.scale;
    if (grown === 1) return this.sheet.covers(view, this.ratio);
    return now - this.zoomed_at < kRest_ms && grown > 0.6 && grown < 2;
  }

  drawSheet(scene, view, shows) {
    const sheet = this.sheet;
    sheet.begin(view, this.ratio, this.rem);
    this.glow ??= glowOf(scene, this.lightOf);
    drawGlow(sheet, this.glow);
    drawPanels(sheet, scene, this.lightOf);
    drawPattern(sheet, scene);
    for (const port of scene.ports) drawDark(sheet, port);
    if (shows.cables) scene.ports.forEach((port) => drawCable(sheet, port));
    if (shows.windows) scene.ports.forEach((port) => drawWindow(sheet, scene, port));
    this.drawn = {scene, ...shows, seen: view.scale};
  }

  drawSelected(cabinet, view) {
    const left = view.x + cabinet.x * view.scale, top = view.y + cabinet.y * view.scale;
    const width = cabinet.width * view.scale, height = cabinet.height * view.scale;
    for (const [colour, line] of [['#000', 6], ['#fff', 3]]) {
      this.screen.strokeStyle = colour;
      this.screen.lineWidth = line;
      this.screen.strokeRect(left - 1, top - 1, width + 2, height + 2);
    }
  }
}
