// Numbers: within limits, and as text.

/** Clamps a number to limits. */
export const clamp = (number, least, most) => Math.min(most, Math.max(least, number));

/** Formats a whole number with narrow spaces between groups of three digits. */
export function grouped(number) {
  return String(Math.round(number)).replace(/\B(?=(\d{3})+$)/g, '\u202f');
}

/** Formats a count with its noun, in the plural unless the count is 1. */
export const counted = (count, noun) => `${grouped(count)} ${noun}${count === 1 ? '' : 's'}`;

/** Formats a number with at most `digits` digits after the point, without trailing zeros. */
export function decimal(number, digits = 3) {
  return Number.isFinite(number) ? String(Number(number.toFixed(digits))) : '–';
}

/** Formats a time in seconds with a suitable unit. */
export function duration(seconds) {
  const size = Math.abs(seconds);
  if (size >= 1) return `${decimal(seconds, 3)} s`;
  if (size >= 1e-3) return `${decimal(seconds * 1e3, 3)} ms`;
  if (size >= 1e-6) return `${decimal(seconds * 1e6, 3)} µs`;
  return `${decimal(seconds * 1e9, 0)} ns`;
}

/** Formats a share in percent; a small share is not shown as 0. */
export function percent(share) {
  if (share === 0) return '0 %';
  return share < 0.0001 ? '< 0.01 %' : `${(share * 100).toFixed(share < 0.1 ? 2 : 1)} %`;
}
