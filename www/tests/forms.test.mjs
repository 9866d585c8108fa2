// Checks the static form pages under www/verbs against the fields each gateway verb reads.
// Run with: node --test www/tests/
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync, existsSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { dirname, join } from 'node:path';

const DIR = join(dirname(fileURLToPath(import.meta.url)), '..', 'verbs');
const read = (name) => readFileSync(join(DIR, name), 'utf8');

// Selector sections: selector field -> selector value -> fields of that form.
// The fields of value N sit in the fieldset whose legend holds the radio N.
const UNIT = { req_type: { 0: 'addr1_0 id2_0', 1: 'pti_sym1_1 id2_1' } };
const SENS = { req_type: { 0: 'addr1_0', 1: 'pti_sym1_1 id2_1' } };
const fam3 = (f) => ({ [`req_type_${f}`]: { 0: `addr_${f} id1_${f}`, 1: `pti_sym_${f} id2_${f}`, 2: `slot_${f}` } });
const fam2 = (f) => ({ [`req_type_${f}`]: { 0: `addr_${f} id1_${f} value1_${f}`, 1: `pti_sym_${f} id2_${f} value2_${f}` } });
const ref = (n) => ({ [`req_type${n}_pwrreorder`]: { 0: `addr${n}_pwrreorder id${n}1_pwrreorder`, 1: `pti_sym${n}_pwrreorder id${n}2_pwrreorder` } });

// verb -> [fields outside the sections ("?" marks a field the page may leave out), sections]
const VERBS = {
  activate: ['command', UNIT],
  fru: ['?verbose', { req_type: { 0: 'addr1_0 id2_0', 1: 'addr1_1 id2_1', 2: 'pti_sym1_2 id2_2', 3: 'site_type1_3 id2_3' } }],
  frudata: ['offset ?to_write', UNIT],
  fruinfo: ['?verbose ?dump', UNIT],
  getfruledstate: ['?verbose ?id2_3', { req_type: { 0: 'addr1_0 id2_2', 1: 'pti_sym1_1 id2_1' } }],
  setfruledstate: ['?addr1_3 addr1_1 ?addr1_2 id2_2 id2_3', { req_type: { 0: 'addr1_0 id3_0', 1: 'pti_sym1_1 id2_1' } }],
  board: ['slot ?verbose', {}],
  reset: ['slot ?verbose', {}],
  ipmc: ['?verbose', SENS],
  sensor: ['id3_0 ?verbose', SENS],
  sensordata: ['id3_0 ?verbose', SENS],
  getthreshold: ['id3_0 ?verbose', SENS],
  gethysteresis: ['id3_0 ?verbose', SENS],
  setthreshold: ['id3_0 tr ?raw value ?verbose', SENS],
  sethysteresis: ['id3_0 tr value ?verbose', SENS],
  getsensoreventenable: ['id3_0', SENS],
  setsensoreventenable: ['id3_0 id2_1 ?id2_2 ?id2_3', { req_type: { 0: 'addr1_0', 1: 'pti_sym1_1 id2_0' } }],
  sel: ['req_type_sel ?verbose ?value', SENS],
  shelf: ['command feed0 current voltage value_activation value_deactivation slot_bdselgrounded value_bdselgrounded value_allowance op_pwrreorder',
    { ...fam3('activation'), ...fam3('deactivation'), ...fam2('pwrcapability'), ...fam2('pwrdelay'), ...ref(1), ...ref(2) }],
  fans: ['', UNIT],
  getfanlevel: ['?verbose', UNIT],
  setfanlevel: ['value ?verbose', { req_type: { ...UNIT.req_type, 2: '' } }],
  getlanconfig: ['channel parameter', {}],
  setlanconfig: ['channel parameter ?sel value', {}],
  getpef: ['parameter', {}],
  setpef: ['parameter ?sel value', {}],
  alarm: ['command', {}],
  showunhealthy: ['?verbose', {}],
  getipmbstate: ['addr1_0 ?addr1_1', {}],
  setipmbstate: ['addr1_0 addr1_1 ?addr1_3 addr1_2', {}],
  version: ['', {}],
  session: ['', {}],
  switchover: ['', {}],
};

// Radio groups outside the sections, and selects whose option values are fixed.
const RADIOS = { sel: { req_type_sel: ['0', '1', '2'] } };
const SHELF_CMDS = ['00cooling_state', '01fans_state', '02power_distribution', '03power_management', '04address_table',
  '05ha_connectivity', '06pci_connectivity', '07info_refresh', '08max_current', '09min_voltage', '10activation',
  '11deactivation', '12pwr_capability', '13bdsel_grounded', '14pwr_delay', '15allowance', '16pwr_reorder'];
const SELECTS = {
  activate: { command: ['activate', 'deactivate', 'setlocked', 'clearlocked'] },
  shelf: { command: SHELF_CMDS },
  setfruledstate: { addr1_1: ['ON', 'OFF', 'LOCAL', 'BLINK', 'TEST'] },
  setipmbstate: { addr1_2: ['enable', 'disable'] },
};

const GROUPS = [
  ['FRU and board', 'activate fru frudata fruinfo getfruledstate setfruledstate board reset ipmc'],
  ['Sensors and event log', 'sensor sensordata getthreshold gethysteresis setthreshold sethysteresis getsensoreventenable setsensoreventenable sel'],
  ['Shelf-wide', 'shelf fans getfanlevel setfanlevel getlanconfig setlanconfig getpef setpef alarm showunhealthy getipmbstate setipmbstate version session switchover'],
];

// ---- minimal HTML reading ------------------------------------------------
const words = (s) => s.split(/\s+/).filter(Boolean);
const attrs = (s) => Object.fromEntries([...s.matchAll(/([a-zA-Z-]+)(?:\s*=\s*"([^"]*)")?/g)].map((m) => [m[1].toLowerCase(), m[2] ?? '']));
const tags = (html, name) => [...html.matchAll(new RegExp(`<${name}\\b([^>]*)>`, 'gi'))].map((m) => attrs(m[1]));
const controls = (html) => [...html.matchAll(/<(input|select|textarea)\b([^>]*)>/gi)].map((m) => ({ tag: m[1].toLowerCase(), ...attrs(m[2]) }));
// Fieldsets that contain no other fieldset, so nesting does not confuse the regex.
const innerFieldsets = (html) => [...html.matchAll(/<fieldset\b[^>]*>((?:(?!<fieldset\b)[\s\S])*?)<\/fieldset>/gi)].map((m) => m[1]);
const legend = (fs) => (fs.match(/<legend\b[^>]*>([\s\S]*?)<\/legend>/i) || [, ''])[1];
const selectOptions = (html, name) => {
  const m = html.match(new RegExp(`<select\\b[^>]*name="${name}"[^>]*>([\\s\\S]*?)</select>`, 'i'));
  return m ? tags(m[1], 'option').map((o) => o.value) : null;
};

const expected = (verb) => {
  const [common, sections] = VERBS[verb];
  const req = new Set(), all = new Set();
  for (const w of words(common)) { const n = w.replace(/^\?/, ''); all.add(n); if (n === w) req.add(n); }
  for (const [sel, forms] of Object.entries(sections)) {
    req.add(sel); all.add(sel);
    for (const f of Object.values(forms)) for (const n of words(f)) { req.add(n); all.add(n); }
  }
  for (const sel of Object.keys(RADIOS[verb] ?? {})) { req.add(sel); all.add(sel); }
  return { req, all };
};

const PAGES = Object.keys(VERBS);
const pageOf = (verb) => {
  const html = read(`${verb}.html`);
  const forms = [...html.matchAll(/<form\b([^>]*)>([\s\S]*?)<\/form>/gi)];
  return { html, forms, form: forms[0] ? { ...attrs(forms[0][1]), body: forms[0][2] } : null };
};

// ---- tests ---------------------------------------------------------------
test('there are 33 verbs, each with its page', () => {
  assert.equal(PAGES.length, 33);
  for (const v of PAGES) assert.ok(existsSync(join(DIR, `${v}.html`)), `${v}.html missing`);
  assert.ok(existsSync(join(DIR, 'style.css')));
});

test('index links every page exactly once, under its heading', () => {
  const html = read('index.html');
  const links = tags(html, 'a').map((a) => a.href);
  for (const v of PAGES) assert.equal(links.filter((h) => h === `${v}.html`).length, 1, `index link to ${v}.html`);
  const sections = [...html.matchAll(/<h2>([^<]*)<\/h2>([\s\S]*?)(?=<h2>|$)/g)];
  assert.deepEqual(sections.map((s) => s[1]), GROUPS.map((g) => g[0]));
  sections.forEach((s, i) =>
    assert.deepEqual(tags(s[2], 'a').map((a) => a.href).filter((h) => h !== 'index.html'), words(GROUPS[i][1]).map((v) => `${v}.html`)));
});

for (const verb of PAGES) {
  test(`${verb}.html`, () => {
    const { html, forms, form } = pageOf(verb);
    const { req, all } = expected(verb);

    // Frame: one POST form to its own verb, a link back to the index, only local resources.
    assert.equal(forms.length, 1, 'exactly one form');
    assert.equal(form.method, 'POST');
    assert.equal(form.action, `/cgi-bin/${verb}`);
    assert.ok(PAGES.includes(form.action.slice('/cgi-bin/'.length)));
    assert.ok(tags(html, 'a').some((a) => a.href === 'index.html'), 'link to index.html');
    assert.ok(tags(html, 'link').some((l) => l.rel === 'stylesheet' && l.href === 'style.css'), 'stylesheet');
    for (const t of [...tags(html, 'a'), ...tags(html, 'link'), ...tags(html, 'script'), ...tags(html, 'img')])
      for (const u of [t.href, t.src].filter(Boolean)) assert.doesNotMatch(u, /^[a-z]+:|^\/\//i, `external resource ${u}`);

    // Submit buttons post nothing.
    const buttons = [...tags(form.body, 'button'), ...controls(form.body).filter((c) => c.type === 'submit')];
    assert.ok(buttons.length >= 1, 'a submit button');
    for (const b of buttons) assert.equal(b.name, undefined, 'submit button without name');

    // A POST with an empty body is refused by the gateway: a form whose
    // controls may all stay unposted (none, or only checkboxes) carries the
    // hidden field "posted"; no other form has hidden fields.
    const hidden = controls(form.body).filter((c) => c.type === 'hidden');
    const mayPostNothing = controls(form.body).every((c) => c.type === 'checkbox' || c.type === 'hidden' || c.type === 'submit');
    assert.deepEqual(hidden.map((c) => `${c.name}=${c.value}`), mayPostNothing ? ['posted=1'] : []);

    // Field names: within the allowed set, required ones present, no duplicates except radio groups.
    const fields = controls(form.body).filter((c) => c.type !== 'submit' && c.type !== 'hidden');
    const names = fields.map((c) => c.name);
    for (const n of names) assert.ok(all.has(n), `unexpected field ${n}`);
    for (const n of req) assert.ok(names.includes(n), `missing field ${n}`);
    for (const n of new Set(names)) {
      const kinds = new Set(fields.filter((c) => c.name === n).map((c) => c.type));
      if (!kinds.has('radio')) assert.equal(names.filter((x) => x === n).length, 1, `field ${n} appears twice`);
    }

    // Labels: every control has a unique id and a label for it; every label points at a control.
    const ids = fields.map((c) => c.id);
    const fors = tags(html, 'label').map((l) => l.for);
    assert.equal(new Set(ids).size, ids.length, 'ids unique');
    for (const c of fields) assert.ok(c.id && fors.includes(c.id), `label for ${c.name} (${c.id})`);
    for (const f of fors) assert.ok(ids.includes(f), `label for unknown id ${f}`);

    if (names.includes('verbose')) {
      const v = fields.find((c) => c.name === 'verbose');
      assert.equal(v.type, 'checkbox'); assert.equal(v.value, '-v');
    }

    // Radio groups: the expected values, one checked by default.
    const sections = VERBS[verb][1];
    const groups = { ...Object.fromEntries(Object.entries(sections).map(([s, f]) => [s, Object.keys(f)])), ...RADIOS[verb] };
    for (const [g, values] of Object.entries(groups)) {
      const rs = fields.filter((c) => c.name === g);
      assert.ok(rs.every((r) => r.type === 'radio'), `${g} is a radio group`);
      assert.deepEqual(rs.map((r) => r.value), values, `${g} values`);
      assert.equal(rs.filter((r) => 'checked' in r).length, 1, `${g} has one default`);
    }
    for (const c of fields.filter((c) => c.type === 'radio')) assert.ok(c.name in groups, `radio ${c.name} expected`);

    // Each selector value's fields sit in the fieldset whose legend holds that radio.
    const fsets = innerFieldsets(form.body);
    for (const [sel, forms] of Object.entries(sections)) {
      for (const [value, list] of Object.entries(forms)) {
        const hits = fsets.filter((fs) => controls(legend(fs)).some((c) => c.name === sel && c.value === value));
        assert.equal(hits.length, 1, `fieldset for ${sel}=${value}`);
        const inside = controls(hits[0]).map((c) => c.name).filter((n) => n !== sel);
        assert.deepEqual(inside.sort(), words(list).sort(), `fields of ${sel}=${value}`);
      }
    }
    // Every fieldset opens with a legend, and every control sits inside a fieldset.
    const opened = form.body.match(/<fieldset\b/gi) ?? [];
    assert.equal((form.body.match(/<fieldset\b[^>]*>\s*<legend\b/gi) ?? []).length, opened.length, 'each fieldset has a legend');
    let depth = 0;
    for (const m of form.body.matchAll(/<(\/?)fieldset\b[^>]*>|<(?:input|select|textarea)\b([^>]*)>/gi)) {
      if (/^<fieldset/i.test(m[0])) depth++;
      else if (m[1]) depth--;
      else if (!['submit', 'hidden'].includes(attrs(m[2]).type)) assert.ok(depth > 0, `${attrs(m[2]).name} is inside a fieldset`);
    }

    for (const [name, values] of Object.entries(SELECTS[verb] ?? {}))
      assert.deepEqual(selectOptions(form.body, name), values, `options of ${name}`);
  });
}

test('shelf.html posts value2_ in the pti_sym sections and value1_ in the address sections', () => {
  const { form } = pageOf('shelf');
  const fsets = innerFieldsets(form.body);
  for (const fam of ['pwrcapability', 'pwrdelay']) {
    const names = (n) => controls(fsets.find((fs) => controls(fs).some((c) => c.name === n)) ?? '').map((c) => c.name);
    assert.ok(names(`pti_sym_${fam}`).includes(`value2_${fam}`), `value2_${fam} beside pti_sym_${fam}`);
    assert.ok(!names(`pti_sym_${fam}`).includes(`value1_${fam}`), `no value1_${fam} beside pti_sym_${fam}`);
    assert.ok(names(`addr_${fam}`).includes(`value1_${fam}`), `value1_${fam} beside addr_${fam}`);
  }
  assert.equal(selectOptions(form.body, 'command').length, 17);
});
