// What may be changed of the board from here, where the server was started with --control.
import {element} from './panels.js';

const at = (id) => document.getElementById(id);

export class Control {
  constructor() {
    this.token = '';
    at('ports').addEventListener('click', (event) => {
      const {link, up} = event.target.dataset;
      if (link !== undefined) this.send({order: 'link', port: Number(link), up: up !== ''});
    });
    at('lux-form').addEventListener('submit', (event) => {
      event.preventDefault();
      this.send({order: 'lux', lux: at('lux').valueAsNumber});
    });
    at('lux-fail').addEventListener('click', () => this.send({order: 'lux', lux: 'fail'}));
    at('jumps').addEventListener('click', (event) => {
      const {seconds} = event.target.dataset;
      if (seconds !== undefined) this.send({order: 'jump', seconds: Number(seconds)});
    });
    at('fault-form').addEventListener('submit', (event) => {
      event.preventDefault();
      this.send({order: 'fault', name: at('fault').value, count: at('fault-count').valueAsNumber});
    });
  }

  show(state, before) {
    if (state.control !== before?.control) {
      this.token = state.control.token ?? '';
      for (const part of document.querySelectorAll('.control-only'))
        part.hidden = !state.control.on;
      at('fault').replaceChildren(
          ...(state.control.faults ?? []).map((name) => element('option', {}, name)));
    }
    if (state.outside !== before?.outside) {
      const set = Object.entries(state.outside.faults).map(([name, count]) => `${name} ${count}`);
      at('faults-set').textContent = set.length > 0 ? `Counters: ${set.join(', ')}` : '';
    }
  }

  async send(order) {
    let text;
    try {
      const answer = await fetch('/order', {
        method: 'POST',
        headers: {'Content-Type': 'application/json', 'X-Quivord-Token': this.token},
        body: JSON.stringify(order),
      });
      text = answer.ok ? '' : (await answer.text()).trim();
    } catch {
      text = 'quivord-wall doesn\'t answer';
    }
    at('control-answer').textContent = text;
  }
}
