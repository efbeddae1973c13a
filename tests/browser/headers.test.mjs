// lighttpd playing the web agent's part: whatever identity headers a client
// sends, the program behind it sees only the ones the server configuration
// supplies (web/lighttpd/agent.conf with the demo administrator).
import assert from 'node:assert/strict';
import path from 'node:path';
import { after, before, describe, test } from 'node:test';
import {
  PROBE, SOURCE, TOKEN_PUNCTUATION, parseEnvironment, rawRequest, readAgentFile, startLighttpd,
} from './lib/web.mjs';

const DEMO_AGENT_FILE = path.join(SOURCE, 'web/lighttpd/demo-agent.conf');
const demo = readAgentFile(DEMO_AGENT_FILE);

// Each CGI variable the program reads for identity, with the value the demo
// configuration gives it ('' = must not reach the program at all).
const PROTECTED = {
  HTTP_KV_USERDN: demo.userdn,
  HTTP_KVUSERDN: '',
  HTTP_KV_AUTHDIRNAMESPACE: demo.namespace,
  HTTP_KVAUTHDIRNAMESPACE: '',
  HTTP_KV_AUTHDIRSERVER: demo.server,
  HTTP_KVAUTHDIRSERVER: '',
  HTTP_USERPATH: demo.userpath,
  HTTP_LXRADMIN: demo.identity,
  HTTP_LXRADMINCONTEXT: demo.context,
  HTTP_RETURNTO: demo.returnto,
  HTTP_HELPURL: demo.helpurl,
};

// Every header name a client could use to reach one of those variables.
function forgedHeaders(value) {
  const headers = [];
  for (const word of ['USERDN', 'AUTHDIRNAMESPACE', 'AUTHDIRSERVER']) {
    for (const c of TOKEN_PUNCTUATION) headers.push([`KV${c}${word}`, value]);
    headers.push([`KV${word}`, value]);
    headers.push([`kv${TOKEN_PUNCTUATION[0]}${word.toLowerCase()}`, value]);
  }
  for (const name of ['USERPATH', 'LXRADMIN', 'LXRADMINCONTEXT', 'RETURNTO', 'HELPURL', 'LxrAdmin']) {
    headers.push([name, value]);
  }
  return headers;
}

// What the probe received for the protected variables: name -> list of values.
function protectedSeen(body) {
  const seen = {};
  for (const [name, value] of parseEnvironment(body)) {
    if (name in PROTECTED) (seen[name] ??= []).push(value);
  }
  return seen;
}

function expectedSeen() {
  const seen = {};
  for (const [name, value] of Object.entries(PROTECTED)) if (value !== '') seen[name] = [value];
  return seen;
}

describe('lighttpd supplies the identity headers', () => {
  let server;
  before(() => {
    server = startLighttpd({ agent: DEMO_AGENT_FILE, aliases: { '/cgi-bin/env-probe': PROBE } });
  });
  after(() => server?.stop());

  test('the demo administrator reaches the program as configured', async () => {
    assert.ok(demo.userdn && demo.identity, 'demo-agent.conf names an administrator');
    const r = await rawRequest(server.url, { path: '/cgi-bin/env-probe' });
    assert.equal(r.status, 200);
    assert.deepEqual(protectedSeen(r.body), expectedSeen());
  });

  test('every spelling of a forged identity header is overridden or dropped', async () => {
    const forged = forgedHeaders('uid=intruder,o=evil');
    const r = await rawRequest(server.url, { path: '/cgi-bin/env-probe', headers: forged });
    assert.equal(r.status, 200);
    assert.doesNotMatch(r.body, /intruder/);
    assert.deepEqual(protectedSeen(r.body), expectedSeen());
  });

  test('forged headers sent one at a time, before and after other headers', async () => {
    for (const [name, value] of forgedHeaders('Anonymous')) {
      const r = await rawRequest(server.url, {
        path: '/cgi-bin/env-probe',
        headers: [[name, value], ['X-Filler', '1'], [name, value]],
      });
      assert.equal(r.status, 200, name);
      assert.deepEqual(protectedSeen(r.body), expectedSeen(), `header ${name}`);
    }
  });

  test('header names with other characters are refused before any program runs', async () => {
    for (const name of ['KV/USERDN', 'KV(USERDN', 'KV USERDN', 'KV\u00e9USERDN', 'KV:USERDN']) {
      const r = await rawRequest(server.url, {
        path: '/cgi-bin/env-probe', headers: [`${name}: uid=intruder,o=evil`],
      });
      if (r.status === 200) {
        // Accepted only if the name was cut at ":" into a harmless header.
        assert.doesNotMatch(r.body, /^HTTP_KV_USERDN=uid=intruder/m, name);
        assert.deepEqual(protectedSeen(r.body), expectedSeen(), name);
      } else {
        assert.equal(r.status, 400, name);
      }
    }
  });

  test('the status pictures are served where the pages look for them', async () => {
    for (const name of ['Disabled', 'Blank', 'Unknown', 'Redisable']) {
      const r = await rawRequest(server.url, { path: `/korvelagent/dmspages/${name}.gif` });
      assert.equal(r.status, 200, name);
      assert.equal(r.headers['content-type'], 'image/gif');
      assert.ok(r.body.startsWith('GIF89a'), name);
    }
  });
});
