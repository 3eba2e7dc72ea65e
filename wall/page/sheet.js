// What is drawn on: a picture somewhat larger than the canvas, so that it needn't be drawn anew for
// every move. Its coordinates are those of the canvas.
const kMargin = 0.2;  // how far it reaches beyond the canvas, of its size

export class Sheet {
  constructor() {
    this.canvas = new OffscreenCanvas(1, 1);
    this.context = this.canvas.getContext('2d');
    this.reach = {left: 0, top: 0, right: 1, bottom: 1};
  }

  // Empties it for a view. `ratio` is device pixels a pixel, `rem` the size of the page's texts.
  begin(view, ratio, rem) {
    this.view = {x: view.x, y: view.y, scale: view.scale, width: view.width, height: view.height};
    this.ratio = ratio;
    this.rem = rem;
    const left = Math.ceil(view.width * kMargin), top = Math.ceil(view.height * kMargin);
    const width = Math.round((view.width + 2 * left) * ratio);
    const height = Math.round((view.height + 2 * top) * ratio);
    if (this.canvas.width !== width) this.canvas.width = width;
    if (this.canvas.height !== height) this.canvas.height = height;
    this.context.setTransform(1, 0, 0, 1, 0, 0);
    this.context.clearRect(0, 0, width, height);
    this.context.setTransform(ratio, 0, 0, ratio, left * ratio, top * ratio);
    this.reach = {left: -left, top: -top, right: view.width + left, bottom: view.height + top};
  }

  // Whether it was drawn for a canvas like this, and covers what a view of the same scale sees.
  covers(view, ratio) {
    const drawn = this.view;
    return drawn.width === view.width && drawn.height === view.height && this.ratio === ratio &&
        Math.abs(view.x - drawn.x) <= view.width * kMargin &&
        Math.abs(view.y - drawn.y) <= view.height * kMargin;
  }

  // Lays it where another view is, which may be larger or smaller.
  layOn(screen, view) {
    const grown = view.scale / this.view.scale;
    const left = view.x + (this.reach.left - this.view.x) * grown;
    const top = view.y + (this.reach.top - this.view.y) * grown;
    const width = this.canvas.width / this.ratio, height = this.canvas.height / this.ratio;
    screen.imageSmoothingEnabled = grown !== 1;
    screen.drawImage(this.canvas, left, top, width * grown, height * grown);
  }

  toSheet(x, y) {
    return [this.view.x + x * this.view.scale, this.view.y + y * this.view.scale];
  }

  toWall(x, y) {
    return [(x - this.view.x) / this.view.scale, (y - this.view.y) / this.view.scale];
  }

  // A cabinet in whole pixels, so that nothing is blurred.
  box(cabinet) {
    const corner = this.toSheet(cabinet.x, cabinet.y).map(Math.round);
    const end = this.toSheet(cabinet.x + cabinet.width, cabinet.y + cabinet.height).map(Math.round);
    return [...corner, Math.max(end[0] - corner[0], 1), Math.max(end[1] - corner[1], 1)];
  }

  reaches([left, top, width, height]) {
    const reach = this.reach;
    return left < reach.right && top < reach.bottom && left + width > reach.left &&
        top + height > reach.top;
  }

  // All of these cabinets as one path, which is filled faster than a thousand boxes.
  path(cabinets) {
    const path = new Path2D();
    for (const cabinet of cabinets) {
      const box = this.box(cabinet);
      if (this.reaches(box)) path.rect(...box);
    }
    return path;
  }
}
