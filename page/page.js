// What the page shows: a report, or a sweep's plots.
import { show_report } from './report.js';
import { show_sweep } from './sweep/page.js';

const data = JSON.parse(document.getElementById('data').textContent);
if (data.page === 'sweep') show_sweep(data);
else show_report(data);
// The sections that an address names were not there when it was opened.
if (!location.hash.includes('=')) document.getElementById(decodeURIComponent(location.hash.slice(1)))?.scrollIntoView();
