// Numbers: within limits, and as text.

/** The number itself, or the limit that it is beyond. */
export const clamp = (number, least, most) => Math.min(most, Math.max(least, number));

/** A whole number with narrow spaces between groups of three digits. */
export function grouped(number) {
  return String(Math.round(number)).replace(/\B(?=(\d{3})+$)/g, '\u202f');
}

/** A count with its noun, which has an s unless there is one. */
export const counted = (count, noun) => `${grouped(count)} ${noun}${count === 1 ? '' : 's'}`;

/** A number with at most so many digits after the point, without trailing zeros. */
export function decimal(number, digits = 3) {
  return Number.isFinite(number) ? String(Number(number.toFixed(digits))) : '–';
}

/** A time in seconds with a fitting unit. */
export function duration(seconds) {
  const size = Math.abs(seconds);
  if (size >= 1) return `${decimal(seconds, 3)} s`;
  if (size >= 1e-3) return `${decimal(seconds * 1e3, 3)} ms`;
  if (size >= 1e-6) return `${decimal(seconds * 1e6, 3)} µs`;
  return `${decimal(seconds * 1e9, 0)} ns`;
}

/** A share in percent; small shares that are not 0 do not read as 0. */
export function percent(share) {
  if (share === 0) return '0 %';
  return share < 0.0001 ? '< 0.01 %' : `${(share * 100).toFixed(share < 0.1 ? 2 : 1)} %`;
}
