// What the board holds, as it comes from the server: the whole state first, then what changes.

// A JSON merge patch (RFC 7396). What it doesn't touch stays the very same object, so whoever shows
// a part can tell by identity whether it has changed.
export function merged(before, patch) {
  if (patch === null || typeof patch !== 'object' || Array.isArray(patch)) return patch;
  const after =
      before !== null && typeof before === 'object' && !Array.isArray(before) ? {...before} : {};
  for (const [key, value] of Object.entries(patch)) {
    if (value === null)
      delete after[key];
    else
      after[key] = merged(after[key], value);
  }
  return after;
}

const kRetry_ms = 2000;

// Calls `onState(state, fresh)` for each new state, and `onTrouble(text)` while there is none; an
// empty text says that all is well.
export function watch(onState, onTrouble) {
  let state = null;

  function take(next, fresh) {
    state = next;
    onTrouble('');
    onState(state, fresh);
  }

  // A stream that was refused doesn't say why; a plain request does.
  async function askWhy() {
    try {
      const answer = await fetch('/events', {signal: AbortSignal.timeout(kRetry_ms)});
      if (!answer.ok)
        onTrouble((await answer.text()).trim());
      else
        await answer.body?.cancel();
    } catch {
      onTrouble('quivord-wall doesn\'t answer; trying again');
    }
    setTimeout(open, kRetry_ms);
  }

  function open() {
    const source = new EventSource('/events');
    source.addEventListener('state', (event) => take(JSON.parse(event.data), true));
    source.addEventListener('patch', (event) => take(merged(state, JSON.parse(event.data)), false));
    source.addEventListener('error', () => {
      if (source.readyState === EventSource.CLOSED)
        askWhy();
      else
        onTrouble('quivord-wall doesn\'t answer; trying again');
    });
  }

  open();
}
