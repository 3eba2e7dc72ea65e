// What the state means for the picture: every cabinet with its place, its card and its light. No
// drawing here, and no document.
const kScreenLost = 0xff;

// A card as a row of the state's list.
function cardOf(
    [, brightness, red, green, blue, virtualRed, screen, mapping, takesPart, width, height]) {
  return {
    brightness,
    colours: [red, green, blue],
    virtualRed,
    screen,
    mapping,
    takesPart: takesPart === 1,
    width,
    height
  };
}

// The cards of one port, from board 0 up, as many as `count`.
function cardsOf(runs, count) {
  const cards = [];
  for (const run of runs ?? []) {
    const card = cardOf(run);
    for (let i = 0; i < run[0] && cards.length < count; ++i) cards.push(card);
  }
  return cards;
}

export function linkOf(links, port) {
  const ways = [];
  if (links.copper.includes(port)) ways.push('copper');
  if (links.fiber1.includes(port)) ways.push('fiber 1');
  if (links.fiber2.includes(port)) ways.push('fiber 2');
  return ways;
}

// Why a cabinet is dark, or an empty text.
function darkness(state, linked, card) {
  if (!state.screen.open) return 'the output is closed';
  if (!linked) return 'the port has no link';
  if (card === undefined) return 'no card is behind the port here';
  if (!card.takesPart) return 'the card doesn\'t take part';
  if (card.screen === kScreenLost) return 'the watchdog has blackened it';
  if (card.brightness === 0) return 'brightness 0';
  return '';
}

function cabinetsOf(state, number, port, size) {
  const linked = linkOf(state.links, number).length > 0;
  const cards = cardsOf(state.cards.ports[number], port.cards);
  const cabinets = [];
  for (let i = 0; 2 * i + 1 < port.at.length; ++i) {
    const dark = darkness(state, linked, cards[i]);
    cabinets.push({
      port: number,
      number: i,
      x: port.at[2 * i],
      y: port.at[2 * i + 1],
      ...size,
      card: cards[i],
      linked,
      dark,
      // Light of red, green and blue, 0 to 1.
      light: dark ? [0, 0, 0] :
                    cards[i].colours.map((c) => (c / 255) * (cards[i].brightness / 255)),
    });
  }
  return cabinets;
}

// Ports that show something of their own, by number, with their cabinets in the order of the cable.
export function sceneOf(state) {
  const [width, height] = state.wall.card;
  const size = {width: Math.max(width, 1), height: Math.max(height, 1)};
  const ports = [];
  for (const [key, port] of Object.entries(state.wall.ports)) {
    if (port.at === undefined) continue;
    const number = Number(key);
    ports.push({number, window: port.window, cabinets: cabinetsOf(state, number, port, size)});
  }
  const cabinets = ports.flatMap((port) => port.cabinets);
  const [screenWidth, screenHeight] = state.wall.screen;
  return {
    ports,
    cabinets,
    size,
    width: cabinets.reduce((most, c) => Math.max(most, c.x + c.width), Math.max(screenWidth, 1)),
    height: cabinets.reduce((most, c) => Math.max(most, c.y + c.height), Math.max(screenHeight, 1)),
    screen: {width: screenWidth, height: screenHeight},
    pattern: state.screen.open ? state.picture.pattern : {kind: 'none'},
  };
}

export function cabinetAt(scene, x, y) {
  return scene.cabinets.find(
      (c) => x >= c.x && y >= c.y && x < c.x + c.width && y < c.y + c.height);
}

// The nearest cabinet in a direction: what lies off to the side counts double.
export function neighbour(scene, from, dx, dy) {
  let best, least = Infinity;
  for (const cabinet of scene.cabinets) {
    const along = (cabinet.x - from.x) * dx + (cabinet.y - from.y) * dy;
    const aside = Math.abs((cabinet.x - from.x) * dy + (cabinet.y - from.y) * dx);
    if (along > 0 && along + 2 * aside < least) [best, least] = [cabinet, along + 2 * aside];
  }
  return best ?? from;
}
