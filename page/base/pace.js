// Scheduling: drawing once for each frame of the screen, requests one at a time.

/**
 * Returns a function that calls draw() at the next frame of the screen, once for all calls before it.
 * @param {function(): void} draw
 */
export function oncePerFrame(draw) {
  let isAsked = false;
  return () => {
    if (isAsked) return;
    isAsked = true;
    requestAnimationFrame(() => {
      isAsked = false;
      draw();
    });
  };
}

/**
 * Returns a function that runs a task, never two at a time. Calls during a run are coalesced into one more run.
 * @param {function(AbortSignal): Promise<void>} task shows its own errors.
 * @param {{pause?: number, abort?: boolean}} [options] pause: least time between two runs in milliseconds;
 *   abort: a new call aborts the request of the running one, whose result is no longer needed.
 */
export function latest(task, { pause = 0, abort = false } = {}) {
  let running = null; // aborts the present run; null if there is none
  let isAskedAgain = false;
  const runOnce = async () => {
    const begin = performance.now();
    try {
      await task(running.signal);
    } catch (error) {
      if (error.name !== 'AbortError') console.error(error);
    }
    if (!pause) return;
    const took = performance.now() - begin;
    await sleep(Math.max(pause - took, took)); // a slow task runs at most half of the time
  };
  const run = async () => {
    do {
      isAskedAgain = false;
      running = new AbortController();
      await runOnce();
    } while (isAskedAgain);
    running = null;
  };
  return () => {
    if (!running) return void run();
    isAskedAgain = true;
    if (abort) running.abort();
  };
}

/** Resolves after a time, or as soon as the signal is aborted. */
export function sleep(milliseconds, signal) {
  return new Promise((resolve) => {
    const timer = setTimeout(resolve, milliseconds);
    signal?.addEventListener(
      'abort',
      () => {
        clearTimeout(timer);
        resolve();
      },
      { once: true },
    );
  });
}

/** Resolves when the tab is shown. */
export function shown() {
  if (!document.hidden) return Promise.resolve();
  return new Promise((resolve) => {
    const look = () => {
      if (document.hidden) return;
      document.removeEventListener('visibilitychange', look);
      resolve();
    };
    document.addEventListener('visibilitychange', look);
  });
}
