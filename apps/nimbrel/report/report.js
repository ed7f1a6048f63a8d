// Draws the charts of a report from the data in the page. Everything that is told by a chart also
// stands in a table of the page; without this script the page is complete but for its charts.
(() => {
  'use strict';

  const run = JSON.parse(document.getElementById('run').textContent);
  const MONTHS = ['Jan', 'Feb', 'Mar', 'Apr', 'May', 'Jun', 'Jul', 'Aug', 'Sep', 'Oct', 'Nov', 'Dec'];
  const DAY = 86400000;

  // ---------------------------------------------------------------- dates

  /** The number of a day, from "YYYY-MM-DD". */
  const dayOf = (text) => Date.parse(text.slice(0, 10) + 'T00:00:00Z') / DAY;
  /** The day of a finish: one at midnight ends the day before. */
  const finishDayOf = (text) => dayOf(text) - (text.endsWith('T00:00') ? 1 : 0);
  const partsOf = (day) => {
    const date = new Date(day * DAY);
    return [date.getUTCFullYear(), date.getUTCMonth(), date.getUTCDate()];
  };
  const longDay = (day) => {
    const [year, month, date] = partsOf(day);
    return `${date} ${MONTHS[month]} ${year}`;
  };
  const isoDay = (day) => new Date(day * DAY).toISOString().slice(0, 10);

  /** Days from first to last that make good ticks, at most about `most`. */
  function dateTicks(first, last, most) {
    const span = last - first;
    const days = [1, 2, 7, 14].find((step) => span / step <= most);
    const ticks = [];
    if (days) {
      for (let day = Math.ceil(first / days) * days; day <= last; day += days) {
        ticks.push(day);
      }
      return ticks;
    }
    const months = [1, 2, 3, 6, 12, 24, 60].find((step) => span / (30.4 * step) <= most) || 120;
    for (let day = Math.ceil(first); day <= last; ++day) {
      const [year, month, date] = partsOf(day);
      if (date === 1 && (year * 12 + month) % months === 0) {
        ticks.push(day);
      }
    }
    return ticks;
  }

  /** "15 Aug", with the year below it where it is new. */
  function tickLabel(day, previous) {
    const [year, month, date] = partsOf(day);
    const isNew = previous === undefined || partsOf(previous)[0] !== year;
    return isNew ? [`${date} ${MONTHS[month]}`, String(year)] : `${date} ${MONTHS[month]}`;
  }

  // ---------------------------------------------------------------- looks

  /** The colours of the page, or those of paper. */
  function palette(onPaper) {
    const source = onPaper ? document.querySelector('.paper') : document.documentElement;
    const style = getComputedStyle(source);
    const colour = (name) => style.getPropertyValue('--' + name).trim();
    return {
      ink: colour('ink'), soft: colour('soft'), rule: colour('rule'), page: colour('page'),
      with: colour('with'), withLight: colour('with-light'), without: colour('without'),
      plain: colour('plain'), grey: colour('grey'), greyLight: colour('grey-light'),
      sharp: onPaper,
    };
  }

  const isolate = (text) => '\u2068' + text + '\u2069';
  const cut = (text, length) => {
    const letters = [...text];
    return letters.length > length ? letters.slice(0, length - 1).join('') + '…' : text;
  };

  function options(colours, changes) {
    const axis = (axisChanges) => ({
      border: {color: colours.rule},
      ...axisChanges,
      grid: {color: colours.rule, borderColor: colours.soft, ...(axisChanges.grid || {})},
      ticks: {color: colours.soft, ...(axisChanges.ticks || {})},
      title: {display: Boolean(axisChanges.name), text: axisChanges.name, color: colours.soft},
    });
    return {
      animation: false,
      responsive: true,
      maintainAspectRatio: false,
      devicePixelRatio: colours.sharp ? 3 : undefined,
      ...changes,
      scales: {x: axis(changes.x || {}), y: axis(changes.y || {})},
      plugins: {
        legend: {
          display: changes.legend !== false,
          labels: {color: colours.ink, usePointStyle: true, boxWidth: 24, boxHeight: 8},
        },
        tooltip: {callbacks: changes.tooltip || {}},
      },
    };
  }

  // ---------------------------------------------------------------- charts

  const withoutFinish = () =>
    run.without_weather ? run.without_weather.finish
      : run.attribution ? run.attribution.none.finish : null;
  const hasWithout = () => Boolean(run.weather && run.distribution.without_weather);

  /** The boxes that a mark's label may have, those before that are read more easily: beside the mark,
      or over it where the chart ends. */
  function* labelBoxes(mark, at, width, area) {
    const within = (left) => Math.max(area.left + 3, Math.min(left, area.right - width - 3));
    const sides = mark.side === 'left' ? [at - width - 7, at + 7] : [at + 7, at - width - 7];
    const first = mark.share === undefined ? area.top + 14 : area.bottom - 10;
    const step = mark.share === undefined ? 20 : -20;
    for (const left of [...sides.filter((side) => within(side) === side), ...sides.map(within)]) {
      for (let i = 0; i === 0 || i * 20 < area.bottom - area.top - 20; ++i) {
        const baseline = first + i * step;
        yield {left: left - 3, right: left + width + 3, top: baseline - 13, bottom: baseline + 5, baseline};
      }
    }
  }

  /** Whether a line through points, in pixels, passes through a box. */
  function crosses(line, box) {
    const xs = [box.left, ...line.map((point) => point.x)
      .filter((x) => x > box.left && x < box.right), box.right]
      .filter((x) => x >= line[0].x && x <= line.at(-1).x);
    const heights = xs.map((x) => heightAt(line, x));
    return heights.length > 0 && Math.min(...heights) < box.bottom && Math.max(...heights) > box.top;
  }

  /** Draws vertical lines with labels, where no other label and no curve is if there is such a place,
      and where they cross their curve a dot. */
  const marks = (list, colours) => ({
    id: 'marks',
    afterDatasetsDraw(chart) {
      const {ctx, chartArea: area, scales: {x, y}} = chart;
      ctx.save();
      ctx.font = `600 12px ${Chart.defaults.font.family}`;
      const curves = chart.data.datasets.map((set) => set.data
        .map((point) => ({x: x.getPixelForValue(point.x), y: y.getPixelForValue(point.y)})));
      const places = list.map((mark) => ({
        at: x.getPixelForValue(mark.day),
        top: mark.share === undefined ? area.top : y.getPixelForValue(mark.share),
      }));
      const boxes = [];
      list.forEach((mark, i) => {
        const overlaps = (box) => boxes.filter((other) => other.left < box.right &&
          other.right > box.left && other.top < box.bottom && other.bottom > box.top).length;
        const onCurves = (box) => curves.filter((curve) => crosses(curve, box)).length;
        const onMarks = (box) => places.filter(({at, top}) =>
          at > box.left && at < box.right && top < box.bottom).length;
        let best;
        for (const box of labelBoxes(mark, places[i].at, ctx.measureText(mark.text).width, area)) {
          box.crossed = onCurves(box);
          box.harm = 100 * overlaps(box) + 10 * box.crossed + onMarks(box);
          best = best && best.harm <= box.harm ? best : box;
        }
        boxes.push(best);
      });
      list.forEach((mark, i) => {
        const {at, top} = places[i];
        ctx.strokeStyle = mark.colour;
        ctx.setLineDash(mark.share === undefined ? [2, 3] : [5, 4]);
        ctx.lineWidth = 1.25;
        ctx.beginPath();
        ctx.moveTo(at, area.bottom);
        ctx.lineTo(at, top);
        ctx.stroke();
        if (mark.share !== undefined) {
          ctx.fillStyle = mark.colour;
          ctx.beginPath();
          ctx.arc(at, top, 4, 0, 2 * Math.PI);
          ctx.fill();
        }
      });
      list.forEach((mark, i) => {
        const {left, right, top, bottom, baseline, crossed} = boxes[i];
        if (!crossed) {  // else the curve would have a gap
          ctx.fillStyle = colours.page;
          ctx.fillRect(left, top, right - left, bottom - top);
        }
        ctx.fillStyle = mark.colour;
        ctx.fillText(mark.text, left + 3, baseline);
      });
      ctx.restore();
    },
  });

  /** The height of a line through points at a place between them. */
  function heightAt(points, x) {
    const next = points.findIndex((point) => point.x >= x);
    if (next <= 0) {
      return points.at(next).y;
    }
    const [a, b] = [points[next - 1], points[next]];
    return a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
  }

  function curve(colours) {
    const points = (shape) => shape.curve.map(([day, share]) => ({x: dayOf(day), y: 100 * share}));
    const line = (label, shape, colour, dash) => ({
      label, data: points(shape), borderColor: colour, backgroundColor: colour, borderDash: dash,
      borderWidth: 2.5, clip: 4, pointRadius: 0, pointHitRadius: 12, pointStyle: 'line', tension: 0,
    });
    const sets = [];
    const list = [];
    /** P80 is the first day by whose end 80% have finished, where the curve may be higher already. */
    const mark = (finish, shape, colour, side) => {
      const day = finishDayOf(finish.p80);
      list.push({day, share: heightAt(points(shape), day), colour, side,
        text: `P80 ${longDay(day)}`});
    };
    if (hasWithout()) {
      sets.push(line('without weather', run.distribution.without_weather, colours.without, [7, 4]));
      mark(withoutFinish(), run.distribution.without_weather, colours.without, 'left');
    }
    sets.push(line(run.weather ? 'with weather' : 'finish', run.distribution.finish,
      run.weather ? colours.with : colours.without, []));
    mark(run.finish, run.distribution.finish, run.weather ? colours.with : colours.without, 'right');

    const days = sets.flatMap((set) => set.data.map((point) => point.x));
    let first = Math.min(...days);
    const last = Math.max(...days);
    const planned = finishDayOf(run.deterministic.finish);
    if (planned <= last && first - planned < (last - first) / 2) {
      first = Math.min(first, planned - 1);
      list.push({day: planned, colour: colours.soft, text: 'plan’s own date', side: 'right'});
    }
    return {
      type: 'line',
      data: {datasets: sets},
      plugins: [marks(list, colours)],
      options: options(colours, {
        interaction: {mode: 'nearest', axis: 'x', intersect: false},
        x: {
          type: 'linear', min: first, max: last,
          afterBuildTicks: (scale) => {
            scale.ticks = dateTicks(first, last, Math.max(2, scale.width / 64))
              .map((value) => ({value}));
          },
          ticks: {
            autoSkip: false, maxRotation: 0,
            callback: (value, i, ticks) => tickLabel(value, i ? ticks[i - 1].value : undefined),
          },
        },
        y: {min: 0, max: 100, name: 'finished', ticks: {stepSize: 20, callback: (v) => v + '%'}},
        tooltip: {
          title: (items) => 'by the end of ' + longDay(items[0].parsed.x),
          label: (item) => `${item.dataset.label}: ${item.parsed.y.toFixed(1)}%`,
        },
      }),
    };
  }

  function histogram(colours) {
    const bars = run.distribution.finish.histogram;
    const set = (label, shape, colour) => ({
      label, data: shape.histogram.map((bar) => bar[2]), backgroundColor: colour, pointStyle: 'rect',
      barPercentage: 1, categoryPercentage: 0.86,
    });
    const sets = [];
    if (hasWithout()) {
      sets.push(set('without weather', run.distribution.without_weather, colours.without));
    }
    sets.push(set(run.weather ? 'with weather' : 'finish', run.distribution.finish,
      run.weather ? colours.with : colours.without));
    return {
      type: 'bar',
      data: {labels: bars.map((bar) => bar[0]), datasets: sets},
      options: options(colours, {
        interaction: {mode: 'index', intersect: false},
        x: {
          grid: {display: false},
          ticks: {
            autoSkip: true, autoSkipPadding: 16, maxRotation: 0,
            callback: (value, i) => tickLabel(dayOf(bars[i][0]), i ? dayOf(bars[i - 1][0]) : undefined),
          },
        },
        y: {beginAtZero: true, name: 'iterations', ticks: {precision: 0}},
        tooltip: {
          title: (items) => {
            const [from, to] = bars[items[0].dataIndex];
            return from === to ? longDay(dayOf(from)) : `${longDay(dayOf(from))} to ${longDay(dayOf(to))}`;
          },
          label: (item) => `${item.dataset.label}: ${item.parsed.y} iterations`,
        },
      }),
    };
  }

  function bars(colours, labels, sets, changes) {
    const letters = (canvas) => (canvas.clientWidth < 520 ? 17 : 42);
    return {
      type: 'bar',
      data: {labels, datasets: sets},
      options: options(colours, {
        indexAxis: 'y',
        interaction: {mode: 'index', axis: 'y', intersect: false},
        ...changes,
        y: {
          ...changes.y,
          grid: {display: false},
          ticks: {
            autoSkip: false, color: colours.ink,
            callback(value) {
              return isolate(cut(labels[value], letters(this.chart.canvas)));
            },
          },
        },
      }),
    };
  }

  const days = (item) => `${item.dataset.label}: ${item.parsed.x.toFixed(1)} days`;

  function cost(colours) {
    const list = [...run.attribution.calendars]
      .sort((a, b) => b.left_out.cost_days.p80 - a.left_out.cost_days.p80);
    return bars(colours, list.map((calendar) => calendar.name), [
      {label: 'with the others', data: list.map((c) => c.left_out.cost_days.p80),
        backgroundColor: colours.with, pointStyle: 'rect'},
      {label: 'alone', data: list.map((c) => c.alone.cost_days.p80),
        backgroundColor: colours.withLight, borderColor: colours.with, borderWidth: 1, pointStyle: 'rect'},
    ], {x: {name: 'days at P80'}, tooltip: {label: days}});
  }

  function ledger(colours) {
    const list = run.ledger;
    const part = (label, key, colour) => ({
      label, data: list.map((row) => row[key]), backgroundColor: colour, pointStyle: 'rect',
      borderColor: colours.page, borderWidth: {right: 1}, stack: 'all',
    });
    return bars(colours, list.map((row) => row.name), [
      part('moving the finish', 'moving_days', colours.with),
      part('absorbed by float', 'absorbed_days', colours.withLight),
      part('none under way', 'idle_days', colours.grey),
      part('no work anyway', 'off_days', colours.greyLight),
    ], {x: {stacked: true, name: 'mean days an iteration'}, y: {stacked: true}, tooltip: {label: days}});
  }

  function drivers(colours, target) {
    const list = run.sensitivities[target].tasks.filter((task) => task.cruciality > 0)
      .sort((a, b) => Math.abs(b.sensitivity) - Math.abs(a.sensitivity));
    return bars(colours, list.map((task) => `${task.id}  ${task.name}`), [
      {label: 'sensitivity', data: list.map((task) => task.sensitivity),
        backgroundColor: colours.plain},
    ], {
      legend: false,
      x: {name: 'correlation of duration and finish'},
      tooltip: {
        label: (item) => {
          const task = list[item.dataIndex];
          return [`sensitivity ${task.sensitivity.toFixed(2)}`,
            `criticality ${(100 * task.criticality).toFixed(0)}%`,
            `cruciality ${task.cruciality.toFixed(2)}`];
        },
      },
    });
  }

  function configOf(chart, colours) {
    const [kind, number] = chart.split('-');
    switch (kind) {
      case 'curve': return curve(colours);
      case 'histogram': return histogram(colours);
      case 'cost': return cost(colours);
      case 'ledger': return ledger(colours);
      default: return drivers(colours, Number(number));
    }
  }

  const drawn = [];
  function draw(onPaper) {
    const colours = palette(onPaper);
    Chart.defaults.font.family = getComputedStyle(document.body).fontFamily;
    Chart.defaults.color = colours.ink;
    for (const chart of drawn.splice(0)) {
      chart.destroy();
    }
    for (const canvas of document.querySelectorAll('canvas[data-chart]')) {
      const config = configOf(canvas.dataset.chart, colours);
      if (config.options.indexAxis === 'y') {
        const perRow = 16 + 10 * (config.options.scales.x.stacked ? 1 : config.data.datasets.length);
        canvas.parentElement.style.height = `${90 + perRow * config.data.labels.length}px`;
      }
      drawn.push(new Chart(canvas, config));
    }
  }

  // ---------------------------------------------------------------- looks of the page

  const root = document.documentElement;
  const darkScreen = matchMedia('(prefers-color-scheme: dark)');
  const isDark = () => (root.dataset.theme ? root.dataset.theme === 'dark' : darkScreen.matches);
  const button = document.getElementById('theme');
  function nameButton() {
    button.textContent = isDark() ? 'Light colours' : 'Dark colours';
  }
  button.hidden = false;
  button.addEventListener('click', () => {
    root.dataset.theme = isDark() ? 'light' : 'dark';
    nameButton();
    draw(false);
  });
  darkScreen.addEventListener('change', () => {
    nameButton();
    draw(false);
  });

  let closed = [];
  addEventListener('beforeprint', () => {
    closed = [...document.querySelectorAll('details:not([open])')];
    closed.forEach((details) => { details.open = true; });
    root.classList.add('printing');
    draw(true);
  });
  addEventListener('afterprint', () => {
    closed.forEach((details) => { details.open = false; });
    root.classList.remove('printing');
    draw(false);
  });

  // ---------------------------------------------------------------- heat maps

  function chanceOn(map, day) {
    const at = map.first_day === null ? -1 : day - dayOf(map.first_day);
    return map.chance[at] || 0;
  }
  const percent = (share) => `${(100 * share).toFixed(1).replace(/\.0$/, '')}%`;

  const lookup = document.getElementById('lookup-day');
  if (lookup) {
    const maps = run.heat_maps.filter(Boolean);
    lookup.closest('.lookup').hidden = false;
    const firsts = maps.filter((map) => map.first_day).map((map) => dayOf(map.first_day));
    lookup.value = isoDay(Math.min(...firsts));
    const find = () => {
      const day = lookup.value ? dayOf(lookup.value) : NaN;
      document.getElementById('lookup-found').textContent = Number.isNaN(day) ? ''
        : maps.map((map) => `${isolate(map.name)} ${percent(chanceOn(map, day))}`).join(', ');
    };
    lookup.addEventListener('input', find);
    find();
  }

  const tip = document.createElement('div');
  tip.className = 'tip';
  tip.hidden = true;
  document.body.append(tip);
  for (const svg of document.querySelectorAll('svg[data-heat]')) {
    const map = run.heat_maps[svg.dataset.heat];
    svg.addEventListener('pointermove', (event) => {
      const box = svg.getBoundingClientRect();
      const rows = svg.viewBox.baseVal.height;
      const year = Number(svg.dataset.year) + Math.floor((event.clientY - box.top) / box.height * rows);
      const day = dayOf(`${year}-01-01`) + Math.floor((event.clientX - box.left) / box.width * 366);
      tip.textContent = `${longDay(day)}: ${percent(chanceOn(map, day))}`;
      tip.hidden = false;
      tip.style.left = `${Math.max(0, Math.min(event.pageX + 12, root.clientWidth - tip.offsetWidth - 8))}px`;
      tip.style.top = `${event.pageY + 14}px`;
    });
    svg.addEventListener('pointerleave', () => { tip.hidden = true; });
  }

  nameButton();
  draw(false);
})();
