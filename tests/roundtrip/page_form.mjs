// A display page of LXRAdmin as a browser would hold it, without a browser:
// the page's own scripts run in a node `vm` context over a minimal form
// model, so that the page's SubmitForm() (its checks and its copy statements)
// decides what is posted, exactly as it would in a browser.
//
//   const page = new Page(html);         // runs the inline scripts in order
//   page.choose('kvlxrFailureCount', (v) => v.startsWith('0 '));
//   page.tick('kvlxrLoginHistory');
//   const fields = page.submit();        // [[name, value], ...] of PostForm
//
// What the model does not do: layout, events (onClick/onChange are not run:
// they only swap pictures), and anything outside the two forms.
import vm from 'node:vm';

const ENTITIES = { amp: '&', lt: '<', gt: '>', quot: '"', apos: "'", nbsp: '\u00a0' };

// Attribute values as a browser reads them: character references decoded.
function decodeEntities(text) {
  return text.replace(/&(#x[0-9a-f]+|#[0-9]+|[a-z]+);/gi, (all, ref) => {
    if (ref[0] === '#') {
      const code = ref[1] === 'x' || ref[1] === 'X' ? parseInt(ref.slice(2), 16) : parseInt(ref.slice(1), 10);
      return String.fromCodePoint(code);
    }
    return ENTITIES[ref.toLowerCase()] ?? all;
  });
}

// The attributes of one start tag: { NAME: value } with upper-case names;
// a bare attribute (CHECKED) has the value ''.
function parseAttributes(text) {
  const attrs = {};
  for (const m of text.matchAll(/([A-Za-z_-]+)(?:\s*=\s*"([^"]*)")?/g)) {
    attrs[m[1].toUpperCase()] = m[2] === undefined ? '' : decodeEntities(m[2]);
  }
  return attrs;
}

class Control {
  constructor(tag, attrs) {
    this.tag = tag;
    this.type = tag === 'SELECT' ? 'select-one' : (attrs.TYPE ?? 'text').toLowerCase();
    this.name = attrs.NAME ?? '';
    this.options = [];
    const box = this.type === 'radio' || this.type === 'checkbox';
    this.ownValue = attrs.VALUE ?? (box ? 'on' : '');
    this.defaultValue = this.ownValue;
    this.checked = 'CHECKED' in attrs;
    this.selectedIndex = -1;
  }

  get value() {
    if (this.tag !== 'SELECT') return this.ownValue;
    const i = this.selectedIndex >= 0 ? this.selectedIndex : 0;
    return this.options[i]?.value ?? '';
  }

  set value(v) {
    if (this.tag !== 'SELECT') {
      this.ownValue = String(v);
      return;
    }
    this.selectedIndex = this.options.findIndex((o) => o.value === String(v));
  }

  focus() {}
}

// Reads the controls of one form, in document order, from the page as its
// scripts left it. The form's end is its first "</FORM>".
function parseForm(html, name) {
  const start = html.indexOf(`<FORM METHOD="POST" NAME="${name}"`);
  if (start < 0) return null;
  const end = html.indexOf('</FORM>', start);
  const body = html.slice(start, end < 0 ? html.length : end);
  const controls = [];
  let select = null;
  const tags = /<(\/?)(INPUT|SELECT|OPTION)\b((?:\s+[A-Za-z_-]+(?:\s*=\s*"[^"]*")?)*)\s*>/gi;
  for (const m of body.matchAll(tags)) {
    const tag = m[2].toUpperCase();
    if (m[1]) {
      if (tag === 'SELECT') select = null;
      continue;
    }
    const attrs = parseAttributes(m[3]);
    if (tag === 'OPTION') {
      if (!select) throw new Error(`an OPTION outside a SELECT in ${name}`);
      // A later SELECTED option wins, as in a single-choice list.
      if ('SELECTED' in attrs) select.selectedIndex = select.options.length;
      select.options.push({ value: attrs.VALUE ?? '' });
      continue;
    }
    const control = new Control(tag, attrs);
    controls.push(control);
    if (tag === 'SELECT') select = control;
  }
  // form.elements[name]: the control, or an indexable list when the name repeats.
  const elements = {};
  for (const c of controls) {
    const prev = elements[c.name];
    if (prev === undefined) elements[c.name] = c;
    else if (Array.isArray(prev)) prev.push(c);
    else elements[c.name] = [prev, c];
  }
  return { name, controls, elements, submitted: false, submit() { this.submitted = true; } };
}

export class Page {
  // Runs every SCRIPT block in document order; what a block writes with
  // document.write takes its place, as the browser's parser does.
  constructor(html) {
    this.alerts = [];
    const document = { forms: [], images: {}, out: '' };
    document.write = (s) => { document.out += s; };
    document.writeln = (s) => { document.out += `${s}\n`; };
    this.document = document;
    this.context = vm.createContext({ document, alert: (m) => this.alerts.push(String(m)) });
    this.context.window = this.context;
    this.html = html.replace(/<SCRIPT\b[^>]*>([\s\S]*?)<\/SCRIPT>/gi, (all, code) => {
      document.out = '';
      vm.runInContext(code, this.context);
      return document.out;
    });
    this.displayForm = parseForm(this.html, 'DisplayForm');
    this.postForm = parseForm(this.html, 'PostForm');
    if (!this.displayForm) throw new Error('the page has no DisplayForm');
    document.DisplayForm = this.displayForm;
    document.PostForm = this.postForm ?? undefined;
    document.forms = [this.displayForm, this.postForm].filter(Boolean);
  }

  // The DisplayForm controls of that name (always a list).
  controls(name) {
    return this.displayForm.controls.filter((c) => c.name === name);
  }

  // The PostForm fields as the page wrote them: [[name, value], ...].
  hiddenFields() {
    return (this.postForm?.controls ?? []).map((c) => [c.name, c.value]);
  }

  // Checks the radio of group `name` whose VALUE passes `test`; returns that VALUE.
  choose(name, test) {
    const radios = this.controls(name).filter((c) => c.type === 'radio');
    const pick = radios.filter((c) => test(c.value));
    if (pick.length !== 1) throw new Error(`${pick.length} radios of ${name} match`);
    for (const r of radios) r.checked = r === pick[0];
    return pick[0].value;
  }

  // Ticks (or clears) the n-th checkbox named `name`.
  tick(name, index = 0, on = true) {
    const box = this.controls(name).filter((c) => c.type === 'checkbox')[index];
    if (!box) throw new Error(`no checkbox ${name}[${index}]`);
    box.checked = on;
  }

  // Types into a text or password box, or picks an option (which must exist).
  set(name, value) {
    const [c, ...more] = this.controls(name);
    if (!c || more.length) throw new Error(`no single control ${name}`);
    c.value = value;
    if (c.tag === 'SELECT' && c.value !== String(value)) throw new Error(`${name} offers no ${value}`);
  }

  // Runs the page's SubmitForm(); returns the PostForm fields it would post,
  // or throws with the page's alerts when a check refused the submission.
  submit() {
    if (!this.postForm) throw new Error('the page has no PostForm');
    const result = vm.runInContext('SubmitForm()', this.context);
    if (result !== false) throw new Error('SubmitForm() let the browser post DisplayForm');
    if (!this.postForm.submitted) throw new Error(`not submitted: ${this.alerts.join(' | ')}`);
    return this.hiddenFields();
  }
}
