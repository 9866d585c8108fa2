// A request for every verb, as the form pages would post it, and what its
// page must hold: the tool's answer (a non-empty output block) or, where a
// third item is given, the verb's own message. And the check that a server
// answers each of them byte for byte as the gateway run directly does,
// which also fails when an installed verb has no request here.
import assert from 'node:assert/strict';
import { spawnSync } from 'node:child_process';
import { copyFileSync } from 'node:fs';
import { dirname } from 'node:path';
import { verbList } from './serve.mjs';

export const form = { 'Content-Type': 'application/x-www-form-urlencoded' };

// The verbs a viewer may use: the ones that only read, whatever is posted
// (frudata writes with to_write, sel clears, alarm changes alarms). And
// the verbs whose command with no fields at all only reads, which GET may
// run. Kept here, apart from the lists the configurations are made from,
// so a slip there shows.
export const readingVerbs = ['version', 'session', 'fru', 'fruinfo', 'getfruledstate', 'board', 'ipmc',
  'sensor', 'sensordata', 'getthreshold', 'gethysteresis', 'getsensoreventenable', 'fans', 'getfanlevel',
  'getlanconfig', 'getpef', 'showunhealthy', 'getipmbstate'];
// The verbs whose fields decide whether they read or change: a viewer
// reaches them, and only a command that reads reaches the shelf.
export const guardedVerbs = ['sel', 'alarm'];
export const getVerbs = ['version', 'session', 'alarm', 'board', 'fans', 'fru', 'frudata', 'getfruledstate',
  'gethysteresis', 'getlanconfig', 'getpef', 'getsensoreventenable', 'getthreshold', 'ipmc', 'sel', 'sensor',
  'sensordata', 'shelf', 'showunhealthy'];
export const verbRequests = [
  ['activate', 'command=activate&addr1_0=0x82&id2_0=0'],
  ['alarm', 'x=1'],
  ['board', 'slot=1'],
  ['fans', 'addr1_0=0x72&id2_0=0'],
  ['fru', 'addr1_0=0x82&id2_0=0'],
  ['gethysteresis', 'addr1_0=0x82&id3_0=1'],
  ['getlanconfig', 'channel=1&parameter=3'],
  ['getpef', 'parameter=1'],
  ['getthreshold', 'addr1_0=0x82&id3_0=1'],
  ['ipmc', 'addr1_0=0x82'],
  ['reset', 'slot=3'],
  ['sel', 'req_type_sel=2&addr1_0=0x20'],
  ['sel', 'req_type_sel=0&addr1_0=0x20'],
  ['sensor', 'addr1_0=0x82&id3_0=1'],
  ['sensordata', 'addr1_0=0x82&id3_0=1'],
  ['sethysteresis', 'addr1_0=0x82&id3_0=1&tr=pos&value=2'],
  ['setlanconfig', 'channel=1&parameter=3&value=192.0.2.10'],
  ['setpef', 'parameter=1&value=1'],
  ['setthreshold', 'addr1_0=0x82&id3_0=1&tr=unc&value=60'],
  ['shelf', 'command=02power_distribution'],
  ['showunhealthy', 'x=1'],
  ['version', 'x=1'],
  ['switchover', 'x=1'],
  ['frudata', 'addr1_0=0x82&id2_0=0&offset=0'],
  ['fruinfo', 'addr1_0=0x82&id2_0=0'],
  ['getfanlevel', 'addr1_0=0x72&id2_0=0'],
  ['setfanlevel', 'addr1_0=0x72&id2_0=0&value=5'],
  ['getsensoreventenable', 'addr1_0=0x82&id3_0=1'],
  ['setsensoreventenable', 'req_type=0&addr1_0=0x82&id3_0=1&id2_1=1'],
  ['getipmbstate', 'addr1_0=0x82'],
  ['getipmbstate', 'x=1', 'It is necessary to specify IPMB address<BR>'],
  ['setipmbstate', 'addr1_0=0x82&addr1_1=A&addr1_2=enable'],
  ['getfruledstate', 'addr1_0=0x82&id2_2=0'],
  ['setfruledstate', 'addr1_0=0x82&id3_0=0&addr1_1=OFF'],
  ['setfruledstate', 'addr1_0=0x82&addr1_1=OFF', 'It is necessary to set parameters!<BR>'],
  ['session', 'x=1'],
];


// Posts every request through `server` with the request context `client`
// and runs the installed gateway directly on a copy of the same shelf state.
export async function expectDirectAnswers(server, client) {
  assert.deepEqual([...new Set(verbRequests.map(([verb]) => verb))].sort(), verbList('verbs.txt').sort(),
    'verbRequests has a request for every installed verb');
  const direct = `${server.dir}/direct.state`;
  for (const [verb, body] of verbRequests) {
    copyFileSync(server.state, direct);
    const run = spawnSync(`${server.root}/cgi-bin/${verb}`, {
      input: body, env: { REQUEST_METHOD: 'POST', CONTENT_LENGTH: String(body.length),
        PATH: `${dirname(server.tool)}:/usr/bin:/bin`, SHELFSIM_STATE: direct } });
    const page = await client.post(`${server.base}/cgi-bin/${verb}`, { data: body, headers: form });
    assert.equal(page.status(), 200, verb);
    assert.equal(`Content-type: text/html\n\n${await page.text()}`, run.stdout.toString('latin1'), verb);
  }
}
