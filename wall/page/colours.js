// One colour a port, neighbours far apart, bright enough for a dark room.
const kPorts = [
  [91, 150, 255],
  [255, 145, 71],
  [53, 207, 146],
  [255, 100, 143],
  [161, 131, 255],
  [50, 201, 224],
  [228, 184, 60],
  [238, 112, 218],
  [168, 202, 76],
  [148, 168, 204],
];

export const portColour = (port) => kPorts[port % kPorts.length];
export const css = ([red, green, blue], alpha = 1) => `rgb(${red} ${green} ${blue} / ${alpha})`;

// Light is linear in a card's bytes; what a monitor is sent is not.
export const toMonitor = (light) => Math.max(light, 0) ** (1 / 2.2);
