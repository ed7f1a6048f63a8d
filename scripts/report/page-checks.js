// Runs in the page. Gives what is wrong with a report, compared with the run's JSON, as lines.
(run) => {
  const MONTHS = ['January', 'February', 'March', 'April', 'May', 'June', 'July', 'August', 'September',
    'October', 'November', 'December'];
  const at = (place) => place.slice(1).split('/').reduce((value, key) => value?.[key], run);

  /** The day on which a moment is told: a finish at midnight ends the day before. */
  const day = (text, isFinish) => {
    const date = new Date(text.slice(0, 10) + 'T00:00:00Z');
    if (isFinish && text.endsWith('T00:00')) {
      date.setUTCDate(date.getUTCDate() - 1);
    }
    return date;
  };
  const isDay = (text, date) => text === date.toISOString().slice(0, 10) ||
    text === `${date.getUTCDate()} ${MONTHS[date.getUTCMonth()]} ${date.getUTCFullYear()}`;
  /** Whether a number in text is the value, as far as its decimals go. */
  const isNumber = (text, value) => {
    const decimals = (text.split('.')[1] || '').length;
    return Number.isFinite(Number(text)) &&
      Math.abs(Number(text) - value) <= 0.5 * 10 ** -decimals + 1e-9;
  };
  const agrees = (text, form, value) => {
    if (value === null || value === undefined) {
      return text === '–';
    }
    switch (form) {
      case 'finish': return isDay(text, day(value, true));
      case 'start': return isDay(text, day(value, false));
      case 'days':
      case 'number': return isNumber(text, value);
      case 'share': return text.endsWith('%') && isNumber(text.slice(0, -1), 100 * value);
      case 'count': return text.replaceAll(',', '') === String(value);
      case 'text': return text === String(value);
      default: return false;
    }
  };

  const wrong = [];
  const figures = [...document.querySelectorAll('[data-json]')];
  for (const figure of figures) {
    const {json, as} = figure.dataset;
    if (!agrees(figure.textContent, as, at(json))) {
      wrong.push(`${json} is ${JSON.stringify(at(json))}, the page shows "${figure.textContent}"`);
    }
  }

  // What the charts are drawn from: the same values; lists may end earlier.
  const compare = (part, whole, place) => {
    if (part === null) {
      return;
    }
    if (typeof part !== 'object') {
      if (part !== whole) {
        wrong.push(`the page's data has ${part} at ${place}, the run ${whole}`);
      }
      return;
    }
    for (const key of Object.keys(part)) {
      compare(part[key], whole?.[key], `${place}/${key}`);
    }
  };
  const data = JSON.parse(document.getElementById('run').textContent);
  compare(data, run, '');

  for (const canvas of document.querySelectorAll('canvas')) {
    const bytes = canvas.getContext('2d').getImageData(0, 0, canvas.width, canvas.height).data;
    if (!bytes.some((byte) => byte !== 0)) {
      wrong.push(`nothing is drawn in the chart ${canvas.dataset.chart}`);
    }
  }
  const root = document.documentElement;
  if (root.scrollWidth > root.clientWidth) {
    wrong.push(`the page is ${root.scrollWidth} wide on a screen of ${root.clientWidth}`);
  }
  return {wrong, figures: figures.length};
}
