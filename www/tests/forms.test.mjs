// Checks the static form pages under www/verbs against the fields each
// gateway verb reads: every button of every form posts only fields its verb
// reads in the way of naming the unit that the form fixes, and all the
// fields that way needs. Run with: node --test www/tests/
import { test } from 'node:test';
import assert from 'node:assert/strict';
import { readFileSync, existsSync } from 'node:fs';
import { fileURLToPath } from 'node:url';
import { dirname, join } from 'node:path';
import { execFileSync } from 'node:child_process';

const DIR = join(dirname(fileURLToPath(import.meta.url)), '..', 'verbs');
const read = (name) => readFileSync(join(DIR, name), 'utf8');
const words = (s) => s.split(/\s+/).filter(Boolean);

// What each verb reads: fields read whatever the selector says, and per
// selector value (absent: 0) the fields that way of naming the unit needs.
const UNIT = { 0: 'addr1_0 id2_0', 1: 'pti_sym1_1 id2_1' };
const SENS = { 0: 'addr1_0', 1: 'pti_sym1_1 id2_1' };
const plain = (common) => ({ common, modes: { 0: '' } });
const VERBS = {
  activate: { common: 'command', modes: UNIT },
  fru: { common: 'verbose addr1_0 id2_0 id2_3', modes: { 0: '', 1: 'addr1_1 id2_1', 2: 'pti_sym1_2 id2_2', 3: 'site_type1_3' } },
  frudata: { common: 'offset to_write', modes: UNIT },
  fruinfo: { common: 'verbose dump', modes: UNIT },
  getfruledstate: { common: 'verbose id2_2 id2_3', modes: { 0: 'addr1_0', 1: 'pti_sym1_1 id2_1' } },
  setfruledstate: { common: 'addr1_3 addr1_1 addr1_2 id2_2 id2_3', modes: { 0: 'addr1_0 id3_0', 1: 'pti_sym1_1 id2_1' } },
  board: plain('slot verbose'),
  reset: plain('slot'),
  ipmc: { common: 'verbose addr1_0', modes: { 0: '', 1: 'pti_sym1_1 id2_1' } },
  sensor: { common: 'id3_0 verbose', modes: SENS },
  sensordata: { common: 'id3_0 verbose', modes: SENS },
  getthreshold: { common: 'id3_0 verbose', modes: SENS },
  gethysteresis: { common: 'id3_0 verbose', modes: SENS },
  setthreshold: { common: 'id3_0 tr raw value verbose', modes: SENS },
  sethysteresis: { common: 'id3_0 tr value verbose', modes: SENS },
  getsensoreventenable: { common: 'id3_0', modes: SENS },
  setsensoreventenable: { common: 'id3_0 id2_1 id2_2 id2_3', modes: { 0: 'addr1_0', 1: 'pti_sym1_1 id2_0' } },
  sel: { common: 'req_type_sel verbose value addr1_0', modes: { 0: '', 1: 'pti_sym1_1 id2_1' } },
  shelf: null,  // below
  fans: { common: 'addr1_0 id2_0', modes: { 0: '', 1: 'pti_sym1_1 id2_1' } },
  getfanlevel: { common: 'verbose', modes: UNIT },
  setfanlevel: { common: 'value verbose', modes: { ...UNIT, 2: '' } },
  getlanconfig: plain('channel parameter'),
  setlanconfig: plain('channel parameter sel value'),
  getpef: plain('parameter'),
  setpef: plain('parameter sel value'),
  alarm: plain('command'),
  showunhealthy: plain('verbose'),
  getipmbstate: { common: 'addr1_1', modes: { 0: 'addr1_0' } },
  setipmbstate: { common: 'addr1_3', modes: { 0: 'addr1_0 addr1_1 addr1_2' } },
  version: plain(''), session: plain(''), switchover: plain(''),
};
const CHANGING = new Set(['activate', 'setfruledstate', 'reset', 'setthreshold', 'sethysteresis', 'setsensoreventenable',
  'setfanlevel', 'setlanconfig', 'setpef', 'setipmbstate', 'switchover']);

// The shelf reads `command`, then the family its two-digit case picks.
const fam3 = (f) => ({ sel: `req_type_${f}`, modes: { 0: `addr_${f} id1_${f} value_${f}`, 1: `pti_sym_${f} id2_${f} value_${f}`, 2: `slot_${f} value_${f}` } });
const fam2 = (f) => ({ sel: `req_type_${f}`, modes: { 0: `addr_${f} id1_${f} value1_${f}`, 1: `pti_sym_${f} id2_${f} value2_${f}` } });
const SHELF = { 8: { modes: { 0: 'feed0 current' } }, 9: { modes: { 0: 'feed0 voltage' } }, 10: fam3('activation'),
  11: fam3('deactivation'), 12: fam2('pwrcapability'), 13: { modes: { 0: 'slot_bdselgrounded value_bdselgrounded' } },
  14: fam2('pwrdelay'), 15: { modes: { 0: 'value_allowance' } },
  16: { modes: { 0: 'addr1_pwrreorder id11_pwrreorder op_pwrreorder addr2_pwrreorder id21_pwrreorder' } } };

// The fields `verb` reads for a request, and those it needs.
function reads(verb, posted) {
  let spec = VERBS[verb], sel = 'req_type', extra = [];
  if (verb === 'shelf') {
    const family = SHELF[Number(posted.get('command').slice(0, 2))] ?? { modes: { 0: '' } };
    spec = { common: '', modes: family.modes };
    sel = family.sel;
    extra = ['command'];
  }
  const need = words(spec.modes[Number(posted.get(sel) ?? 0)] ?? '');
  return { need, read: new Set([...need, ...words(spec.common), ...extra, sel]) };
}

// ---- minimal HTML reading ------------------------------------------------
const attrs = (s) => Object.fromEntries([...s.matchAll(/([a-zA-Z-]+)(?:\s*=\s*"([^"]*)")?/g)].map((m) => [m[1].toLowerCase(), m[2] ?? '']));
const tags = (html, name) => [...html.matchAll(new RegExp(`<${name}\\b([^>]*)>`, 'gi'))].map((m) => attrs(m[1]));
const controls = (html) => [...html.matchAll(/<(input|select)\b([^>]*)>/gi)].map((m) => ({ tag: m[1].toLowerCase(), ...attrs(m[2]) }));
const firstOption = (html, name) => {
  const m = html.match(new RegExp(`<select\\b[^>]*name="${name}"[^>]*>([\\s\\S]*?)</select>`, 'i'));
  const options = tags(m[1], 'option');
  return (options.find((o) => 'selected' in o) ?? options[0]).value;
};
const optionValues = (html, name) => tags(html.match(new RegExp(`<select\\b[^>]*name="${name}"[^>]*>([\\s\\S]*?)</select>`, 'i'))[1], 'option').map((o) => o.value);

// The verbs and the fields each one reads, as the build listed them from
// the gateway's own verb table.
const BUILD = process.env.VERBGW_BUILD ?? join(DIR, '..', '..', 'build');
const GATEWAY_READS = Object.fromEntries(readFileSync(join(BUILD, 'lists', 'verb_fields.txt'), 'utf8').split('\n')
  .filter(Boolean).map((line) => { const [verb, ...fields] = line.split(' '); return [verb, new Set(fields)]; }));
const PAGES = Object.keys(GATEWAY_READS);

test('the pages are the ones the generator writes', () => {
  execFileSync('python3', [join(DIR, '..', '..', 'tools', 'forms', 'make_forms.py'), '--check']);
});

test('each verb\'s ways of naming a unit use only fields the gateway reads for it', () => {
  assert.deepEqual(Object.keys(VERBS).sort(), [...PAGES].sort());
  for (const verb of PAGES.filter((v) => v !== 'shelf')) {
    const modes = Object.keys(VERBS[verb].modes);
    for (const mode of modes) {
      const { read } = reads(verb, new Map([['req_type', mode]]));
      if (modes.length === 1) read.delete('req_type');  // one way: no selector
      for (const n of read) assert.ok(GATEWAY_READS[verb].has(n), `${verb} ${n}`);
    }
  }
  for (const command of Object.keys(SHELF)) {
    for (const mode of Object.keys(SHELF[command].modes)) {
      const { sel } = SHELF[command];
      const posted = new Map([['command', command.padStart(2, '0')], ...(sel ? [[sel, mode]] : [])]);
      for (const n of [...reads('shelf', posted).read].filter(Boolean)) assert.ok(GATEWAY_READS.shelf.has(n), `shelf ${command} ${n}`);
    }
  }
});

test('the index\'s lists link every page exactly once', () => {
  const lists = [...read('index.html').matchAll(/<ul class="verbs">([\s\S]*?)<\/ul>/g)].map((m) => m[1]).join('');
  const links = tags(lists, 'a').map((a) => a.href);
  for (const v of PAGES) assert.equal(links.filter((h) => h === `${v}.html`).length, 1, `index link to ${v}.html`);
});

for (const verb of PAGES) {
  test(`${verb}.html`, () => {
    assert.ok(existsSync(join(DIR, `${verb}.html`)));
    const html = read(`${verb}.html`);
    assert.match(html, /<link rel="icon" href="\/favicon.ico">/);
    assert.match(html, /<meta name="viewport"/);
    assert.match(html, /<iframe name="answer" title="[^"]+" src="answer.html"><\/iframe>/);
    // A blank placeholder only tells the style an empty field: no text
    // stands in a field in place of its label or hint.
    assert.doesNotMatch(html, /placeholder="[^"]*[^"\s]|<script|style="/i, 'no placeholder text, script or inline style');
    const ids = controls(html).filter((c) => c.id).map((c) => c.id);
    assert.equal(new Set(ids).size, ids.length, 'ids unique');
    const labels = tags(html, 'label').map((l) => l.for);
    const forms = [...html.matchAll(/<form\b([^>]*)>([\s\S]*?)<\/form>/gi)].map((m) => ({ ...attrs(m[1]), body: m[2] }));
    for (const form of forms.filter((f) => f.id !== 'list-boards')) {
      const what = `${verb}.html ${form.id}`;
      assert.equal(form.method, 'POST', what);
      assert.equal(form.target, 'answer', what);
      const fields = controls(form.body).filter((c) => c.type !== 'submit');
      for (const c of fields.filter((c) => c.type !== 'hidden')) assert.ok(labels.includes(c.id), `${what}: label for ${c.name}`);
      for (const c of fields.filter((c) => c.name === 'addr1_0' || /^addr_/.test(c.name)))
        assert.equal(c.pattern, '0[xX][0-9a-fA-F]{2}', `${what}: ${c.name} takes 0x82`);
      // The tool splits its line at blanks: a text field refuses them unless
      // it holds a list (bytes; LAN and PEF values that are lists).
      for (const c of fields.filter((c) => c.type === 'text' && !(c.name === 'to_write' || (c.name === 'value' && /lan|pef/.test(verb))))) {
        const whole = c.pattern && new RegExp(`^(?:${c.pattern})$`, 'v');
        assert.ok(whole && !['board1 0', '1 2', '0x82 1', ' 1', '1\t'].some((v) => whole.test(v)), `${what}: ${c.name} refuses blanks`);
      }
      const confirm = fields.find((c) => c.name === 'confirm');
      // A change of the LAN or PEF configuration names its parameter each
      // time: the list starts unchosen, never at the IP address.
      for (const c of fields.filter((c) => confirm && c.tag === 'select' && c.name === 'parameter'))
        assert.ok('required' in c && firstOption(form.body, c.name) === '', `${what}: a parameter is chosen`);
      assert.ok(!confirm || (confirm.type === 'checkbox' && 'required' in confirm && confirm.autocomplete === 'off'),
        `${what}: confirmation required, never restored`);
      // A change posts a token the server fills in for each page load and
      // takes once; a form that only reads posts none.
      const [action, query] = form.action.split('?');
      assert.equal(query, confirm ? `once=@ONCE@-${form.id.slice(5)}` : undefined, `${what}: token`);
      // A button with a form= attribute (a list in a hint) belongs to another form.
      const buttons = tags(form.body, 'button').filter((b) => !b.form);
      assert.ok(buttons.length >= 1, `${what}: a button`);
      for (const b of buttons) {
        // What this button posts: every control with a value, then its own name.
        const posted = new Map();
        for (const c of fields) {
          if (c.type === 'checkbox' || !c.name) continue;
          posted.set(c.name, c.tag === 'select' ? firstOption(form.body, c.name) : c.value ?? 'x');
        }
        if (b.name) posted.set(b.name, b.value);
        // Its optional fields left empty and its boxes unticked, it still
        // posts a field: an empty body is refused by the gateway.
        const always = fields.filter((c) => c.type === 'hidden' || c.tag === 'select' || 'required' in c || c.value);
        assert.ok(always.length > 0 || b.name, `${what} "${b.formaction ?? ''}": posts nothing when left empty`);
        assert.ok(!b.formaction?.includes('?'), `${what}: a read carries no token`);
        const target = (b.formaction ?? action).replace('/cgi-bin/', '');
        assert.ok(PAGES.includes(target), `${what}: posts to ${target}`);
        const { need, read } = reads(target, posted);
        const names = [...new Set([...fields.map((c) => c.name), b.name].filter(Boolean))];
        for (const n of need) assert.ok(names.includes(n), `${what} "${b.formaction ?? ''}": sends ${n}`);
        const changes = CHANGING.has(target) || (target === 'sel' && b.value === '1') ||
          (['alarm', 'frudata'].includes(target) && (posted.has('command') || posted.has('to_write'))) ||
          (target === 'shelf' && Number(posted.get('command').slice(0, 2)) >= 8);
        if (b.formaction || 'formnovalidate' in b) assert.ok(!changes && 'formnovalidate' in b, `${what}: a read only reads`);
        else {
          for (const n of names) {
            assert.ok(read.has(n) || ['confirm', 'posted'].includes(n), `${what}: ${verb} does not read ${n}`);
            assert.ok(GATEWAY_READS[target].has(n) || ['confirm', 'posted'].includes(n), `${what}: the gateway's ${target} reads no ${n}`);
          }
          assert.equal(!!confirm && !('formnovalidate' in b), changes, `${what} ${b.value ?? ''}: confirmation`);
        }
      }
    }
  });
}

test('the shelf page offers the 17 sub-commands, value2_ beside pti_sym_', () => {
  const html = read('shelf.html');
  assert.deepEqual(optionValues(html, 'command').map((v) => v.slice(0, 2)),
    Array.from({ length: 17 }, (_, i) => String(i).padStart(2, '0')));
  for (const fam of ['pwrcapability', 'pwrdelay']) assert.match(html, new RegExp(`name="pti_sym_${fam}"[\\s\\S]*?name="value2_${fam}"`));
});
