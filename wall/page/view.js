// Which part of the wall is seen: `scale` is monitor pixels a wall pixel, the wall's corner lies at
// (x, y) of the canvas.
const kMostScale = 12;
const kMargin = 0.09;

export class View {
  constructor() {
    this.scale = 1;
    this.x = this.y = 0;
    this.width = this.height = 1;  // of the canvas, in CSS pixels
    this.fitted = true;            // follows the wall and the window until somebody moves it
  }

  // Fits where nobody has moved it.
  settle(scene, width, height) {
    this.width = width;
    this.height = height;
    if (this.fitted) this.fit(scene);
  }

  fit(scene) {
    const room = 1 - 2 * kMargin;
    this.scale = Math.min(
        (this.width * room) / scene.width, (this.height * room) / scene.height, kMostScale);
    this.x = (this.width - scene.width * this.scale) / 2;
    this.y = (this.height - scene.height * this.scale) / 2;
    this.least = this.scale / 2;
    this.fitted = true;
  }

  // Keeps what is at (x, y) of the canvas where it is.
  zoom(factor, x = this.width / 2, y = this.height / 2) {
    const scale = Math.min(Math.max(this.scale * factor, this.least ?? 0.01), kMostScale);
    this.x = x - ((x - this.x) * scale) / this.scale;
    this.y = y - ((y - this.y) * scale) / this.scale;
    this.scale = scale;
    this.fitted = false;
  }

  pan(dx, dy) {
    this.x += dx;
    this.y += dy;
    this.fitted = false;
  }

  // Brings a cabinet into sight.
  reveal(cabinet) {
    const left = this.x + cabinet.x * this.scale, top = this.y + cabinet.y * this.scale;
    const over = (at, size, room) => (at < 0 ? -at : at + size > room ? room - at - size : 0);
    const dx = over(left, cabinet.width * this.scale, this.width);
    const dy = over(top, cabinet.height * this.scale, this.height);
    if (dx !== 0 || dy !== 0) this.pan(dx, dy);
  }

  toWall(x, y) {
    return [(x - this.x) / this.scale, (y - this.y) / this.scale];
  }
}
