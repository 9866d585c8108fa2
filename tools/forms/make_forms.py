#!/usr/bin/env python3
"""Writes the form pages under www/verbs/ from the descriptions below.

Every page follows one pattern, so the pages are written from data rather
than by hand: one <form> per way of naming the unit (its `req_type` fixed
in a hidden field, so the fields an operator filled always match the way
the gateway reads them; `required` on everything that way needs), a
required confirmation checkbox on every form that changes the shelf (its
name, "confirm", is one no verb reads), read-back buttons that post the
same fields to the matching reading verb without the confirmation, and the
answer shown in the named frame beside the forms. No script anywhere.

    tools/forms/make_forms.py           write the pages
    tools/forms/make_forms.py --check   exit 1 when a page differs from what would be written
"""
import os
import sys

ROOT = os.path.join(os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__)))), 'www', 'verbs')

CONTROLLERS = '<a href="/cgi-bin/ipmc" target="answer">list the controllers</a>'
FRUS = '<a href="/cgi-bin/fru" target="answer">list the FRUs</a>'
BOARDS = '<button class="link" form="list-boards" formnovalidate>list the boards</button>'
HEX_ADDRESS = '0[xX][0-9a-fA-F]{2}'


class Field:
    """One control: `kind` is text, number, select, check or hidden."""

    def __init__(self, kind, name, label='', hint='', required=False, options=(), value=None, attrs='', alias=''):
        self.kind, self.name, self.label, self.hint = kind, name, label, hint
        self.required, self.options, self.value, self.attrs = required, options, value, attrs
        self.alias = alias  # tells apart two controls of one name in a form

    def html(self, key):
        fid = f'{self.name}{self.alias}-{key}'
        if self.kind == 'hidden':
            return f'<input type="hidden" name="{self.name}" value="{self.value}">'
        described = f' aria-describedby="{fid}-hint"' if self.hint else ''
        required = ' required' if self.required else ''
        hint = f'\n  <small id="{fid}-hint">{self.hint}</small>' if self.hint else ''
        if self.kind == 'check':
            return (f'<div class="field check">\n  <input type="checkbox" id="{fid}" name="{self.name}" '
                    f'value="{self.value}"{self.attrs}{required}{described}>\n  <label for="{fid}">{self.label}</label>{hint}\n</div>')
        if self.kind == 'select':
            chosen = next((i for i, (v, _) in enumerate(self.options) if v == self.value), None)
            options = ''.join(f'\n    <option value="{v}"{" selected" if i == chosen else ""}>{t}</option>'
                              for i, (v, t) in enumerate(self.options))
            control = f'<select id="{fid}" name="{self.name}"{required}{described}>{options}\n  </select>'
        else:
            value = f' value="{self.value}"' if self.value is not None else ''
            # A blank placeholder lets the style tell an empty field (not
            # marked when another button, such as Read back, sent the form)
            # from a wrong one.
            control = (f'<input type="{self.kind}" id="{fid}" name="{self.name}"{value}{self.attrs}'
                       f' placeholder=" "{required}{described}>')
        return f'<div class="field">\n  <label for="{fid}">{self.label}</label>\n  {control}{hint}\n</div>'


def hidden(name, value):
    return Field('hidden', name, value=value)


def address(name, required=True, empty='', example='0x82'):
    hint = f'0x and two hexadecimal digits, such as {example}; {CONTROLLERS}' + (f'; {empty}' if empty else '')
    return Field('text', name, 'IPMB address', hint, required,
                 attrs=f' pattern="{HEX_ADDRESS}" title="0x and two hexadecimal digits, such as {example}" '
                 'maxlength="4" autocomplete="off" spellcheck="false"')


# The tool splits its command line at blanks, so a blank typed into a
# field of one word would shift the words after it into other arguments
# (a unit name "fantray2 0 1" setting FRU 0 to level 1): such fields
# refuse blanks before anything is sent.
ONE_WORD = ' pattern="\\S+" title="one word, without blanks"'


def unit_name(name, example='board1'):
    return Field('text', name, 'Unit name', f'the name the controller list shows, such as {example}; {CONTROLLERS}',
                 True, attrs=f'{ONE_WORD} maxlength="32" autocomplete="off" spellcheck="false"')


def fru_id(name, required=True, empty=''):
    hint = f'0 to 255; 0 is the controller itself; {FRUS}' + (f'; {empty}' if empty else '')
    return Field('number', name, 'FRU device ID', hint, required, attrs=' min="0" max="255"')


def sensor(name, required):
    hint = 'number of the sensor on the controller, 0 to 255' + ('' if required else
                                                               '; empty: every sensor of the controller')
    return Field('number', name, 'Sensor number', hint, required, attrs=' min="0" max="255"')


def slot(name):
    return Field('number', name, 'Slot number', f'physical slot of the board, 1 or more; {BOARDS}', True,
                 attrs=' min="1" max="255"')


def verbose():
    return Field('check', 'verbose', 'Verbose answer (-v)', value='-v')


def confirm(text):
    # Never restored ticked by the browser's history.
    return Field('check', 'confirm', text, required=True, value='yes', attrs=' autocomplete="off"')


class Form:
    """One <form>: a heading, its fields and buttons, posting to the page's
    verb unless `verb` names another."""

    def __init__(self, key, heading, fields, buttons, verb=None, note='', cls='unit'):
        self.key, self.heading, self.fields, self.buttons, self.verb, self.note, self.cls = (
            key, heading, fields, buttons, verb, note, cls)


def button(label, name=None, value=None, action=None, reads=False):
    named = f' name="{name}" value="{value}"' if name else ''
    other = f' formaction="/cgi-bin/{action}"' if action else ''
    novalidate = ' formnovalidate' if reads else ''
    cls = ' class="secondary"' if reads else ''
    return f'<button type="submit"{cls}{named}{other}{novalidate}>{label}</button>'


def may_post_nothing(f):
    """True when the form, its optional fields left empty and its boxes
    unticked, would post an empty body, which the gateway refuses."""
    sends = any(field.kind in ('hidden', 'select') or field.required or
                (field.kind != 'check' and field.value is not None) for field in f.fields)
    return not sends and not any(' name="' in b for b in f.buttons)


def form_html(verb, f):
    verb = f.verb or verb
    hid = f'h-{f.key}'
    # A form that changes the shelf posts with a token the server fills in
    # for each load of the page and takes once (its reading buttons post
    # without one): history, a reload or a restored tab cannot repeat it.
    changes = any(field.name == 'confirm' for field in f.fields)
    action = f'/cgi-bin/{verb}?once=@ONCE@-{f.key}' if changes else f'/cgi-bin/{verb}'
    buttons = [b.replace(' formnovalidate', f' formaction="/cgi-bin/{verb}" formnovalidate', 1)
               if changes and 'formaction' not in b else b for b in f.buttons]
    # On a form that changes the shelf, the button that changes looks unlike
    # the reading ones, which are the prominent ones.
    if changes:
        buttons = [b.replace('<button type="submit"', '<button type="submit" class="change"', 1)
                   if 'formnovalidate' not in b else b.replace('class="secondary"', 'class="reads"', 1)
                   for b in buttons]
    parts = [f'<form method="POST" action="{action}" target="answer" class="{f.cls}" id="form-{f.key}" '
             f'aria-labelledby="{hid}">', f'<h2 id="{hid}">{f.heading}</h2>']
    if f.note:
        parts.append(f'<p class="note">{f.note}</p>')
    parts += [field.html(f.key) for field in f.fields]
    if may_post_nothing(f):
        # A POST needs a body: this field makes one; no verb reads it.
        parts.append('<input type="hidden" name="posted" value="1">')
    parts.append('<div class="actions">' + ' '.join(buttons) + '</div>')
    parts.append('</form>')
    return '\n'.join(parts)


# The pages that read a thing and the pages that set it link each other.
COUNTERPARTS = {
    'getthreshold': ('setthreshold', 'Set Sensor Threshold'),
    'setthreshold': ('getthreshold', 'Get Sensor Threshold Information'),
    'gethysteresis': ('sethysteresis', 'Set Sensor Hysteresis'),
    'sethysteresis': ('gethysteresis', 'Get Sensor Hysteresis Information'),
    'getsensoreventenable': ('setsensoreventenable', 'Set Sensor Event Enable Mask'),
    'setsensoreventenable': ('getsensoreventenable', 'Get Sensor Event Enable Mask'),
    'getfruledstate': ('setfruledstate', 'Set FRU LED State'),
    'setfruledstate': ('getfruledstate', 'Get FRU LED State'),
    'getfanlevel': ('setfanlevel', 'Set Fan Level'),
    'setfanlevel': ('getfanlevel', 'Get Fan Level'),
    'getlanconfig': ('setlanconfig', 'Set LAN Configuration Information'),
    'setlanconfig': ('getlanconfig', 'Get LAN Configuration Information'),
    'getpef': ('setpef', 'Set PEF Configuration Information'),
    'setpef': ('getpef', 'Get PEF Configuration Information'),
    'getipmbstate': ('setipmbstate', 'Set IPMB State'),
    'setipmbstate': ('getipmbstate', 'Get IPMB State'),
    'board': ('reset', 'Reset Board'),
    'reset': ('board', 'Board Information'),
}


# What a page shows of the shelf before a change, by a GET of a reading
# verb: its caption and the frame's title.
NOW = {
    'switchover': ('ipmc', 'The shelf managers in this shelf now: a backup would be a second "Dedicated Shelf '
                   'Manager"', 'IPM controllers of the shelf'),
}


def page(verb, title, intro, forms):
    related = ''
    if verb in COUNTERPARTS:
        other, other_title = COUNTERPARTS[verb]
        related = f'\n<p class="related">See also: <a href="{other}.html">{other_title}</a></p>'
    if verb in NOW:
        reader, caption, frame_title = NOW[verb]
        related += (f'\n<figure class="now"><figcaption>{caption}</figcaption>\n'
                    f'<iframe src="/cgi-bin/{reader}" title="{frame_title}"></iframe></figure>')
    lists = ''
    if BOARDS in ''.join(field.hint for f in forms for field in f.fields):
        lists = ('\n<form id="list-boards" method="POST" action="/cgi-bin/board" target="answer">'
                 '<input type="hidden" name="slot" value="0"></form>')
    body = '\n'.join(form_html(verb, f) for f in forms)
    return f'''<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>Corvane&#8482; Shelf Manager, {title}</title>
<link rel="icon" href="/favicon.ico">
<link rel="stylesheet" href="style.css">
</head>
<body>
<a class="skip" href="#forms">Skip to the forms</a>
<header class="top"><a href="index.html">Corvane&#8482; Shelf Manager</a> <a class="logout" href="logout">Log out</a></header>
<div class="page">
<main>
<h1>{title}</h1>
<p class="intro">{intro}</p>{related}
<div id="forms">
{body}{lists}
</div>
<p class="back"><a href="index.html">Back to the index</a></p>
</main>
<aside class="answer" aria-labelledby="answer-heading">
<h2 id="answer-heading">Answer</h2>
<iframe name="answer" title="Answer of the shelf manager" src="answer.html"></iframe>
</aside>
</div>
</body>
</html>
'''


# The two usual ways of naming a unit: its IPMB address and FRU device ID,
# or its unit name and FRU device ID (req_type 1).
def by_address():
    return [address('addr1_0'), fru_id('id2_0')]


def by_name(example='board1'):
    return [hidden('req_type', 1), unit_name('pti_sym1_1', example), fru_id('id2_1')]


def two_ways(extra, buttons, address_unit=None, name_example='board1'):
    """The address form and the unit-name form of a page, each followed by
    the same fields and buttons."""
    return [Form('address', 'By IPMB address', (address_unit or by_address()) + extra, buttons),
            Form('name', 'By unit name', by_name(name_example) + extra, buttons)]


def fan_tray_ways(extra, buttons):
    """two_ways with a fan tray's address and name as the examples: a
    board's would only get "not a fan tray" back."""
    return two_ways(extra, buttons, [address('addr1_0', example='0x72'), fru_id('id2_0')], 'fantray1')


THRESHOLDS = [('lnr', 'lnr: Lower Non-Recoverable'), ('lcr', 'lcr: Lower Critical'),
              ('lnc', 'lnc: Lower Non-Critical'), ('unc', 'unc: Upper Non-Critical'),
              ('ucr', 'ucr: Upper Critical'), ('unr', 'unr: Upper Non-Recoverable')]
LEDS = [('0', '0: blue LED (hot swap)'), ('1', '1: LED 1, red or amber (out of service)'),
        ('2', '2: LED 2, green (healthy)'), ('3', '3: LED 3, amber (application specific)')]
COLOURS = [('', 'the LED\'s own colour'), ('BLUE', 'blue'), ('RED', 'red'), ('GREEN', 'green'),
           ('AMBER', 'amber'), ('ORANGE', 'orange'), ('WHITE', 'white')]
SITE_TYPES = [('0', '0: Front board'), ('1', '1: Power entry'), ('2', '2: Shelf FRU information'),
              ('3', '3: Dedicated shelf manager'), ('4', '4: Fan tray'), ('5', '5: Fan filter tray'),
              ('6', '6: Alarm'), ('7', '7: Mezzanine module'), ('8', '8: PMC'),
              ('9', '9: Rear transition module')]
# Every parameter of the LAN and PEF configurations by its number and name;
# the tables among them take a set selector (which entry). A number typed
# in the field after the list takes the list's place (the gateway takes the
# last non-empty value of a field), for a parameter a shelf adds.
LAN_PARAMETERS = ['Set in progress', 'Authentication type support', 'Authentication type enables', 'IP address',
                  'IP address source', 'MAC address', 'Subnet mask', 'IPv4 header parameters', 'Primary RMCP port',
                  'Secondary RMCP port', 'BMC-generated ARP control', 'Gratuitous ARP interval',
                  'Default gateway address', 'Default gateway MAC address', 'Backup gateway address',
                  'Backup gateway MAC address', 'Community string', 'Number of destinations', 'Destination type',
                  'Destination addresses', '802.1q VLAN ID', '802.1q VLAN priority', 'Cipher suite entry support',
                  'Cipher suite entries', 'Cipher suite privilege levels', 'Destination address VLAN tags']
LAN_TABLES = 'destination type, destination addresses, destination address VLAN tags'
PEF_PARAMETERS = ['Set in progress', 'PEF control', 'PEF action global control', 'PEF startup delay',
                  'PEF alert startup delay', 'Number of event filters', 'Event filter table',
                  'Event filter table data 1', 'Number of alert policy entries', 'Alert policy table', 'System GUID',
                  'Number of alert string keys', 'Alert string keys', 'Alert strings',
                  'Number of group control table entries', 'Group control table']
PEF_TABLES = 'the event filter and alert policy tables, alert strings and their keys, the group control table'


def numbered(names, first=None):
    return ([('0', f'0: {first}')] if first else []) + [(str(n), f'{n}: {name}') for n, name in enumerate(names) if n > 0]


LAN_READ = numbered(LAN_PARAMETERS, 'all parameters')
PEF_READ = numbered(PEF_PARAMETERS, 'all parameters')


def parameter_fields(options, chosen=None):
    """The list of parameters and a number in its place. Without `chosen`
    (the set pages) nothing is chosen until the operator chooses: a page
    loaded anew never sets the IP address because it was left at a default."""
    if chosen is None:
        options = [('', 'choose a parameter'), *options, ('', 'the one whose number is given below')]
    return [Field('select', 'parameter', 'Parameter', '', chosen is None, options, chosen or ''),
            Field('number', 'parameter', 'Or a parameter by number', 'takes the place of the list\'s choice when '
                  'given: 0 to 255', attrs=' min="0" max="255"', alias='-number')]


def selector(tables):
    return Field('number', 'sel', 'Set selector (entry)', f'tables only ({tables}): which entry; empty for the '
                 'other parameters', attrs=' min="0" max="255"')


def reading_sensor_page(verb, title, intro, read_what):
    """sensor, sensordata, getthreshold, gethysteresis: the same two ways."""
    return page(verb, title, intro,
                two_ways([sensor('id3_0', False), verbose()], [button(read_what)], [address('addr1_0')]))


def set_sensor_page(verb, reader, title, intro, what, extra_fields, label):
    fields = [sensor('id3_0', True)] + extra_fields + [verbose(), confirm(f'Yes, set this {what}')]
    buttons = [button(label), button('Read back', action=reader, reads=True)]
    return page(verb, title, intro, two_ways(fields, buttons, [address('addr1_0')]))


def fixed_page(verb, title, intro, label, changes=''):
    fields = [confirm(changes)] if changes else []
    return page(verb, title, intro, [Form('run', title, fields, [button(label)])])


PAGES = {}

PAGES['version'] = fixed_page('version', 'Version Information', 'Shows the version of the shelf manager.',
                              'Show the version')
PAGES['session'] = fixed_page('session', 'Session Information', 'Shows the open sessions of the shelf manager.',
                              'Show the sessions')
PAGES['switchover'] = fixed_page(
    'switchover', 'Switchover',
    'Hands control of the shelf over to the backup shelf manager. This shelf manager stops being the active one, '
    'and this page then speaks to a shelf manager that no longer controls the shelf: reconnect to the shelf\'s '
    'address. Without a backup nothing is handed over.',
    'Switch over', 'Yes, hand control over to the backup shelf manager')
PAGES['showunhealthy'] = page('showunhealthy', 'Unhealthy Components Information',
                              'Lists the components that the shelf manager considers unhealthy.',
                              [Form('run', 'Unhealthy components', [verbose()], [button('List them')])])

PAGES['sensor'] = reading_sensor_page('sensor', 'Sensor Information',
                                      'Shows the description of the sensors of an IPM controller.', 'Show sensors')
PAGES['sensordata'] = reading_sensor_page('sensordata', 'Sensor Data Information',
                                          'Shows the current readings of the sensors of an IPM controller.',
                                          'Show readings')
PAGES['getthreshold'] = reading_sensor_page('getthreshold', 'Get Sensor Threshold Information',
                                            'Shows the thresholds of the sensors of an IPM controller.',
                                            'Show thresholds')
PAGES['gethysteresis'] = reading_sensor_page('gethysteresis', 'Get Sensor Hysteresis Information',
                                             'Shows the hysteresis of the sensors of an IPM controller.',
                                             'Show hysteresis')
PAGES['setthreshold'] = set_sensor_page(
    'setthreshold', 'getthreshold', 'Set Sensor Threshold',
    'Sets one threshold of a threshold-based sensor.', 'threshold',
    [Field('select', 'tr', 'Threshold', 'which threshold to set', True, THRESHOLDS, 'unc'),
     Field('text', 'value', 'New value', 'in the sensor\'s unit (degrees C, Volts, RPM), such as 60 or 11.5; '
           'a raw reading, 0 to 255, when the box below is ticked', True,
           attrs=' inputmode="decimal" pattern="-?[0-9]+([.][0-9]+)?" title="a number, such as 60, -5 or 11.5"'
           ' maxlength="16" autocomplete="off"'),
     Field('check', 'raw', 'The value is a raw reading (-r)', value='-r')],
    'Set the threshold')
PAGES['sethysteresis'] = set_sensor_page(
    'sethysteresis', 'gethysteresis', 'Set Sensor Hysteresis',
    'Sets the positive-going or negative-going hysteresis of a threshold-based sensor.', 'hysteresis',
    [Field('select', 'tr', 'Hysteresis', 'which of the two to set', True,
           [('pos', 'pos: positive-going (upper thresholds)'), ('neg', 'neg: negative-going (lower thresholds)')],
           'pos'),
     Field('number', 'value', 'New value', 'raw reading units, 0 to 255', True, attrs=' min="0" max="255"')],
    'Set the hysteresis')

ENABLES = [('0xc0', '0xc0: event messages and sensor scanning on'), ('0x80', '0x80: event messages on, scanning off'),
           ('0x40', '0x40: scanning on, event messages off'), ('0x00', '0x00: both off')]
MASK = (' pattern="0[xX][0-9a-fA-F]{1,4}" title="0x and one to four hexadecimal digits, such as 0x7fff" '
        'maxlength="6" autocomplete="off" spellcheck="false"')


def event_masks():
    return [Field('select', 'id2_1', 'Global enables', 'event message and sensor scanning bits', True, ENABLES, '0xc0'),
            Field('text', 'id2_2', 'Assertion event mask', '0x and up to four hexadecimal digits, such as 0x0285; '
                  'give both masks or neither; empty: the masks stay as they are', attrs=MASK),
            Field('text', 'id2_3', 'Deassertion event mask', 'as the assertion mask', attrs=MASK)]


PAGES['getsensoreventenable'] = page(
    'getsensoreventenable', 'Get Sensor Event Enable Mask',
    'Shows which events the sensors of an IPM controller may generate.',
    two_ways([sensor('id3_0', False)], [button('Show the masks')], [address('addr1_0')]))
PAGES['setsensoreventenable'] = page(
    'setsensoreventenable', 'Set Sensor Event Enable Mask', 'Sets which events a sensor may generate.', [
        Form('address', 'By IPMB address',
             [address('addr1_0'), sensor('id3_0', True)] + event_masks() + [confirm('Yes, set these enables')],
             [button('Set the enables'), button('Read back', action='getsensoreventenable', reads=True)]),
        Form('name', 'By unit name',
             [hidden('req_type', 1), unit_name('pti_sym1_1'), fru_id('id2_0'), sensor('id3_0', True)] +
             event_masks() + [confirm('Yes, set these enables')], [button('Set the enables')],
             note='To read the masks back, use the form above or Get Sensor Event Enable Mask.'),
    ])


def sel_form(key, heading, unit):
    return Form(key, heading, unit + [
        Field('number', 'value', 'Entries to show', 'the most recent entries, 1 or more; empty: every entry; '
              'used by Show entries only', attrs=' min="1" max="65535"'),
        verbose(), confirm('Yes, clear this event log (only for Clear the log)')], [
        button('Show entries', 'req_type_sel', 0, reads=True), button('Show the summary', 'req_type_sel', 2, reads=True),
        button('Clear the log', 'req_type_sel', 1)])


PAGES['sel'] = page('sel', 'System Event Log',
                    'Shows the system event log (SEL) of an IPM controller or its summary, or clears it.', [
                        sel_form('address', 'By IPMB address',
                                 [address('addr1_0', False, 'empty: the shelf manager\'s own log')]),
                        sel_form('name', 'By unit name', [hidden('req_type', 1), unit_name('pti_sym1_1'),
                                                         fru_id('id2_1')]),
                    ])

PAGES['fru'] = page('fru', 'FRU Information', 'Shows the state and description of FRUs.', [
    Form('address', 'By IPMB address and FRU device ID', by_address() + [verbose()], [button('Show the FRU')]),
    Form('type', 'By IPMB address and site type', [hidden('req_type', 1), address('addr1_1'),
         Field('select', 'id2_1', 'Site type', 'kind of site the FRU sits in (sent as type=)', True, SITE_TYPES, '0'),
         verbose()], [button('Show the FRUs')]),
    Form('name', 'By unit name', [hidden('req_type', 2), unit_name('pti_sym1_2'), fru_id('id2_2'), verbose()],
         [button('Show the FRU')]),
    Form('site', 'By site type and site number', [hidden('req_type', 3),
         Field('select', 'site_type1_3', 'Site type', 'kind of site', True, SITE_TYPES, '0'),
         Field('number', 'id2_3', 'Site number', 'which site of that type, 1 or more; empty: every site of the type',
               attrs=' min="1" max="255"'), verbose()], [button('Show the FRUs')]),
    Form('all', 'Every FRU of the shelf', [verbose()], [button('List every FRU')]),
])

OFFSET = ' pattern="0[xX][0-9a-fA-F]+|[0-9]+" title="a number, such as 0x10 or 16"'
PAGES['frudata'] = page('frudata', 'FRU Data', 'Reads the raw FRU data of a FRU, or writes bytes into it.', [
    Form('read', 'Read by IPMB address', by_address() + [
        Field('text', 'offset', 'Offset', 'first byte to show, such as 0x10 or 16; empty: from the start',
              attrs=f'{OFFSET} maxlength="8" autocomplete="off"')], [button('Read')]),
    Form('read-name', 'Read by unit name', by_name() + [
         Field('text', 'offset', 'Offset', 'first byte to show; empty: from the start',
               attrs=f'{OFFSET} maxlength="8" autocomplete="off"')], [button('Read')]),
    Form('write', 'Write by IPMB address', by_address() + [
        Field('text', 'offset', 'Offset', 'first byte to write, such as 0x10 or 16', True,
              attrs=f'{OFFSET} maxlength="8" autocomplete="off"'),
        Field('text', 'to_write', 'Bytes', 'hexadecimal bytes separated by blanks, such as 01 ff 3c', True,
              attrs=' maxlength="160" autocomplete="off" spellcheck="false"'),
        confirm('Yes, write these bytes')], [button('Write')]),
])

PAGES['fruinfo'] = page('fruinfo', 'FRU Information (detailed)', 'Shows the FRU information record of a FRU.',
                        two_ways([verbose(), Field('check', 'dump', 'Dump the raw data too (-d)', value='-d')],
                                 [button('Show')]))

PAGES['getfruledstate'] = page('getfruledstate', 'Get FRU LED State', 'Shows the state of the LEDs of FRUs.', [
    Form('address', 'By IPMB address', [address('addr1_0'), fru_id('id2_2', False, 'empty: every FRU and LED'),
         Field('select', 'id2_3', 'LED', 'needs a FRU device ID', False, [('', 'every LED')] + LEDS, ''), verbose()],
         [button('Show LEDs')]),
    Form('name', 'By unit name', by_name() + [
         Field('select', 'id2_3', 'LED', '', False, [('', 'every LED')] + LEDS, ''), verbose()],
         [button('Show LEDs')]),
])


def led_fields():
    return [Field('select', 'addr1_3', 'LED', 'which LED of the FRU', False, [('', 'every LED (ALL)')] + LEDS, ''),
            Field('select', 'addr1_1', 'Operation', 'LOCAL hands the LED back to the FRU', True,
                  [('ON', 'ON: light steadily'), ('OFF', 'OFF: dark'), ('LOCAL', 'LOCAL: local control'),
                   ('BLINK', 'BLINK: on and off in turn'), ('TEST', 'TEST: lamp test')], 'ON'),
            Field('select', 'addr1_2', 'Colour', 'for ON and BLINK', False, COLOURS, ''),
            Field('number', 'id2_2', 'On time (ms)', 'BLINK: milliseconds lit; TEST: how long the test lasts',
                  attrs=' min="10" max="2500" step="10"'),
            Field('number', 'id2_3', 'Off time (ms)', 'BLINK only: milliseconds dark', attrs=' min="10" max="2500" step="10"'),
            confirm('Yes, set this LED')]


PAGES['setfruledstate'] = page('setfruledstate', 'Set FRU LED State', 'Sets the state of one LED of a FRU, or of all its LEDs.', [
    *two_ways(led_fields(), [button('Set the LED')], [address('addr1_0'), fru_id('id3_0')]),
    Form('read', 'Read back', [address('addr1_0'), fru_id('id2_2')], [button('Show the LEDs')], verb='getfruledstate'),
])

PAGES['board'] = page('board', 'Board Information', 'Shows the board in a slot, or every board.', [
    Form('slot', 'One slot', [slot('slot'), verbose()], [button('Show the board')]),
    Form('all', 'Every board', [hidden('slot', 0)], [button('List every board')]),
])

PAGES['reset'] = page('reset', 'Reset Board', 'Resets the board in a slot. The board stops whatever it is doing.', [
    Form('slot', 'Reset a board', [slot('slot'), confirm('Yes, reset the board in this slot')],
         [button('Reset the board'), button('Show the board', action='board', reads=True)]),
])

PAGES['ipmc'] = page('ipmc', 'IPM Controller Information',
                     'Shows the IPM controllers of the shelf: their addresses, unit names, sites and states.', [
    Form('all', 'Every controller', [verbose()], [button('List every controller')]),
    *two_ways([verbose()], [button('Show the controller')], [address('addr1_0')]),
])

ACTIONS = [('activate', 'activate: bring the FRU into service (M4)'),
           ('deactivate', 'deactivate: take the FRU out of service (M1)'),
           ('setlocked', 'lock: set the locked bit, so it cannot be pulled'),
           ('clearlocked', 'unlock: clear the locked bit')]


def action_fields():
    return [Field('select', 'command', 'Action', '', True, ACTIONS, 'activate'), confirm('Yes, do this to the FRU')]


PAGES['activate'] = page('activate', 'FRU Activate / Deactivate',
                         'Activates or deactivates a FRU, or sets or clears its locked bit.', [
    Form('address', 'By IPMB address', by_address() + action_fields(),
         [button('Apply'), button('Show the FRU', action='fru', reads=True)]),
    Form('name', 'By unit name', by_name() + action_fields(),
         [button('Apply'), button('Show the controller', action='ipmc', reads=True)]),
])


def level():
    return Field('number', 'value', 'Fan level', '0 (slowest) to 15 (fastest)', True, attrs=' min="0" max="15"')


PAGES['fans'] = page('fans', 'Fan Information', 'Shows the fan trays: their levels and speeds.', [
    Form('all', 'Every fan tray', [], [button('List every fan tray')]),
    *fan_tray_ways([], [button('Show the fan tray')]),
])
PAGES['getfanlevel'] = page('getfanlevel', 'Get Fan Level', 'Shows the level of a fan tray.',
                            fan_tray_ways([verbose()], [button('Show the level')]))
PAGES['setfanlevel'] = page('setfanlevel', 'Set Fan Level', 'Sets the level of one fan tray, or of every fan tray.', [
    *fan_tray_ways([level(), verbose(), confirm('Yes, set this level')],
                   [button('Set the level'), button('Read back', action='getfanlevel', reads=True)]),
    Form('all', 'Every fan tray', [hidden('req_type', 2), level(), verbose(), confirm('Yes, set every fan tray')],
         [button('Set every fan tray'), button('Show the fan trays', action='fans', reads=True)]),
])


def channel():
    return Field('number', 'channel', 'LAN channel', 'this shelf manager has channels 1 and 2', True, value='1',
                 attrs=' min="1" max="15"')


LAN_VALUES = ('IP addresses and masks like 192.0.2.10; MAC addresses like 00:00:5e:00:53:10; '
              'address source: static, dhcp, bios or none; VLAN ID: 0 to 4095')
PAGES['getlanconfig'] = page('getlanconfig', 'Get LAN Configuration Information',
                             'Shows the configuration of a LAN channel of the shelf manager.', [
    Form('read', 'LAN configuration', [channel(), *parameter_fields(LAN_READ, '0')], [button('Show')]),
])
PAGES['setlanconfig'] = page('setlanconfig', 'Set LAN Configuration Information',
                             'Sets one configuration parameter of a LAN channel of the shelf manager.', [
    Form('set', 'LAN configuration', note='A new IP address, netmask or gateway of the channel you are connected '
         'through ends this connection: reconnect at the new address (https://NEW-ADDRESS/), from a network '
         'that reaches it.', fields=[channel(), *parameter_fields(LAN_READ[1:]), selector(LAN_TABLES),
         Field('text', 'value', 'New value', LAN_VALUES, True, attrs=' maxlength="40" autocomplete="off" spellcheck="false"'),
         confirm('Yes, change the LAN configuration')],
         buttons=[button('Set'), button('Read back', action='getlanconfig', reads=True)]),
])

PEF_VALUES = ('PEF control: 0 to 15; action global control: 0 to 63; delays: seconds, 0 to 255; '
              'table entries: hexadecimal bytes separated by blanks, such as 0x00 0x01 0x00 0x00')
PAGES['getpef'] = page('getpef', 'Get PEF Configuration Information',
                       'Shows the platform event filtering (PEF) configuration of the shelf manager.', [
    Form('read', 'PEF configuration', parameter_fields(PEF_READ, '0'), [button('Show')]),
])
PAGES['setpef'] = page('setpef', 'Set PEF Configuration Information',
                       'Sets one platform event filtering (PEF) configuration parameter.', [
    Form('set', 'PEF configuration', [
        *parameter_fields(PEF_READ[1:]), selector(PEF_TABLES),
        Field('text', 'value', 'New value', PEF_VALUES, True, attrs=' maxlength="60" autocomplete="off" spellcheck="false"'),
        confirm('Yes, change the PEF configuration')],
        [button('Set'), button('Read back', action='getpef', reads=True)]),
])

PAGES['alarm'] = page('alarm', 'Alarm', 'Shows the shelf\'s telco alarms, raises one or clears them.', [
    Form('show', 'Alarm state', [], [button('Show the alarms')]),
    Form('change', 'Raise or clear', [
        Field('select', 'command', 'Change', '', True,
              [('minor', 'raise the minor alarm'), ('major', 'raise the major alarm'),
               ('critical', 'raise the critical alarm'), ('clear minor', 'clear the minor alarm'),
               ('clear major', 'clear the major alarm'), ('clear critical', 'clear the critical alarm'),
               ('clear all', 'clear every alarm')], 'clear all'),
        confirm('Yes, change the alarms')], [button('Apply')]),
])

BUS = [('A', 'IPMB-A'), ('B', 'IPMB-B')]
PAGES['getipmbstate'] = page('getipmbstate', 'Get IPMB State', 'Shows the state of the IPMB buses of a controller.', [
    Form('read', 'IPMB state', [address('addr1_0'),
         Field('select', 'addr1_1', 'Bus', '', False, [('', 'both buses')] + BUS, '')], [button('Show')]),
])
PAGES['setipmbstate'] = page('setipmbstate', 'Set IPMB State', 'Enables or disables one IPMB bus of a controller.', [
    Form('set', 'IPMB state', [address('addr1_0'), Field('select', 'addr1_1', 'Bus', '', True, BUS, 'A'),
         Field('number', 'addr1_3', 'Link', 'radial IPMB link, 0 to 15; empty: the whole bus', attrs=' min="0" max="15"'),
         Field('select', 'addr1_2', 'Action', '', True, [('enable', 'enable'), ('disable', 'disable')], 'enable'),
         confirm('Yes, change this bus')],
         [button('Apply'), button('Read back', action='getipmbstate', reads=True)]),
])

# The shelf: a chooser of the sub-command, then one form per way of
# naming the object of the chosen family; CSS shows only the chosen
# family's forms (every form where the browser lacks :has()).
SUBCOMMANDS = [
    ('00cooling_state', 'cooling_state: cooling state'), ('01fans_state', 'fans_state: fan trays'),
    ('02power_distribution', 'power_distribution: power feeds'),
    ('03power_management', 'power_management: power budget and order'),
    ('04address_table', 'address_table: sites and addresses'), ('05ha_connectivity', 'ha_connectivity'),
    ('06pci_connectivity', 'pci_connectivity'), ('07info_refresh', 'info_refresh: reread the shelf FRU information'),
    ('08max_current', 'max_current: set the maximum current of a feed'),
    ('09min_voltage', 'min_voltage: set the minimum voltage of a feed'),
    ('10activation', 'activation: who activates a FRU'), ('11deactivation', 'deactivation: who deactivates a FRU'),
    ('12pwr_capability', 'pwr_capability: set the power a FRU may draw'),
    ('13bdsel_grounded', 'bdsel_grounded: set the BDSEL# state of a slot'),
    ('14pwr_delay', 'pwr_delay: set the power-on delay of a FRU'),
    ('15allowance', 'allowance: set the activation allowance'),
    ('16pwr_reorder', 'pwr_reorder: move a FRU in the power-on order'),
]
DISTRIBUTION, MANAGEMENT = '02power_distribution', '03power_management'


def feed():
    return Field('number', 'feed0', 'Power feed', '1 or 2', True, attrs=' min="1" max="2"')


def family(case, key, heading, fields, changes, readback):
    command = next(v for v, _ in SUBCOMMANDS if v.startswith(case))
    return Form(f'f{case}-{key}', heading, [hidden('command', command)] + fields + [confirm(changes)],
                [button('Set'), button('Read back', 'command', readback, reads=True)], cls='unit family')


def shelf_families():
    forms = [
        family('08', 'feed', 'Maximum current of a feed', [feed(), Field(
            'number', 'current', 'Maximum current (A)', '1 to 200 amperes', True,
            attrs=' min="1" max="200" step="0.1"')], 'Yes, set the maximum current', DISTRIBUTION),
        family('09', 'feed', 'Minimum voltage of a feed', [feed(), Field(
            'number', 'voltage', 'Minimum voltage (V)', '-36 to -75 volts', True,
            attrs=' min="-75" max="-36" step="0.1"')], 'Yes, set the minimum voltage', DISTRIBUTION),
    ]
    for case, word, who in (('10', 'activation', 'activates'), ('11', 'deactivation', 'deactivates')):
        value = Field('select', f'value_{word}', f'Who {who} it', '', True,
                      [('1', '1: the shelf manager'), ('0', '0: an operator\'s command')], '1')
        changes = f'Yes, set who {who} this FRU'
        forms += [
            family(case, 'address', f'{word.capitalize()} by IPMB address',
                   [address(f'addr_{word}'), fru_id(f'id1_{word}'), value], changes, MANAGEMENT),
            family(case, 'name', f'{word.capitalize()} by unit name',
                   [hidden(f'req_type_{word}', 1), unit_name(f'pti_sym_{word}'), fru_id(f'id2_{word}'), value],
                   changes, MANAGEMENT),
            family(case, 'slot', f'{word.capitalize()} by slot',
                   [hidden(f'req_type_{word}', 2), slot(f'slot_{word}'), value], changes, MANAGEMENT),
        ]
    for case, word, label, hint, limits in (
            ('12', 'pwrcapability', 'Power (W)', 'watts the FRU may draw, 1 to 400', ' min="1" max="400"'),
            ('14', 'pwrdelay', 'Power-on delay', 'in tenths of a second, 0 to 255: 5 is half a second',
             ' min="0" max="255"')):
        title = 'Power capability' if case == '12' else 'Power-on delay'
        changes = f'Yes, set the {title.lower()}'
        forms += [
            family(case, 'address', f'{title} by IPMB address', [address(f'addr_{word}'), fru_id(f'id1_{word}'),
                   Field('number', f'value1_{word}', label, hint, True, attrs=limits)], changes, MANAGEMENT),
            family(case, 'name', f'{title} by unit name', [hidden(f'req_type_{word}', 1), unit_name(f'pti_sym_{word}'),
                   fru_id(f'id2_{word}'), Field('number', f'value2_{word}', label, hint, True, attrs=limits)],
                   changes, MANAGEMENT),
        ]
    forms += [
        family('13', 'slot', 'BDSEL# of a slot', [slot('slot_bdselgrounded'), Field(
            'select', 'value_bdselgrounded', 'BDSEL#', '', True, [('1', '1: grounded'), ('0', '0: not grounded')],
            '1')], 'Yes, set BDSEL# of this slot', MANAGEMENT),
        family('15', 'allowance', 'Activation allowance', [Field(
            'number', 'value_allowance', 'Allowance (s)', 'seconds the shelf manager waits for a FRU to activate, '
            '0 to 255', True, attrs=' min="0" max="255"')], 'Yes, set the activation allowance', MANAGEMENT),
        family('16', 'order', 'Power-on order', [
            Field('text', 'addr1_pwrreorder', 'FRU to move: unit', f'IPMB address (such as 0x82) or unit name; '
                  f'{CONTROLLERS}', True, attrs=f'{ONE_WORD} maxlength="32" autocomplete="off" spellcheck="false"'),
            fru_id('id11_pwrreorder'),
            Field('select', 'op_pwrreorder', 'Place it', '', True, [('before', 'before'), ('after', 'after')],
                  'before'),
            Field('text', 'addr2_pwrreorder', 'Other FRU: unit', 'IPMB address or unit name', True,
                  attrs=f'{ONE_WORD} maxlength="32" autocomplete="off" spellcheck="false"'),
            fru_id('id21_pwrreorder')], 'Yes, change the power-on order', MANAGEMENT),
    ]
    return forms


SHELF_CHOOSER = Form('choose', 'Show or change', [Field(
    'select', 'command', 'Sub-command', 'the first eight show the state of the shelf; the others change the '
    'setting their form below asks for',
    True, SUBCOMMANDS, '00cooling_state')], [button('Show')])
PAGES['shelf'] = page('shelf', 'Shelf Information',
                      'Shows the state of the shelf, or changes one shelf-wide setting. Choose the sub-command; '
                      'its form appears below.', [SHELF_CHOOSER] + shelf_families())


ANSWER = """<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>Answer</title>
<link rel="stylesheet" href="style.css">
</head>
<body class="waiting">
<main>
<p>The shelf manager's answer appears here.</p>
</main>
</body>
</html>
"""


def server_page(title, paragraphs, styled=True):
    """A page the server answers with in place of a request (www/errors/):
    a refusal, or the log-out's. Unstyled, it loads nothing: the log-out's
    page, after which the stylesheet would ask for the password again."""
    text = '\n'.join(f'<p>{p}</p>' for p in paragraphs)
    style = '\n<link rel="stylesheet" href="/verbs/style.css">' if styled else ''
    return f'''<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title.split(':')[0]}</title>{style}
</head>
<body>
<main>
<h1>{title}</h1>
{text}
</main>
</body>
</html>
'''


ERRORS = {
    # What a browser shows when its user cancels the password prompt. Like
    # the log-out's, it loads nothing that would ask for the password.
    '401': server_page('Not logged in: the shelf manager needs a name and password', [
        'Every page of the shelf manager needs an account. If the browser did\nnot ask for a name and password, '
        'or the question was cancelled, load\nthe page again to be asked.',
        '<a href="/verbs/index.html">Log in</a>'], styled=False),
    '403': server_page('Not allowed: this account may only read', [
        'A viewer account reads the shelf\'s state but changes nothing: this\nneeds an operator account. '
        '(A request that another site\'s page sent is\nrefused the same way.)',
        'To change the shelf, log out ("Log out" at the top of every page) and\nlog in with an operator account.',
        '<a href="/verbs/index.html">Back to the index</a>']),
    '409': server_page('Not sent: nothing was sent to the shelf this time', [
        'Each load of a form page sends its change once. This press was refused\nbecause the page had '
        'sent its change already (a second press, or Back,\nForward or a reload sending it again), or '
        'because the page was loaded\nbefore the web server last started.',
        'If this page sent a change before, its answer said whether the shelf\nmade it or refused it: read the '
        'shelf to see where it stands. To send a\nchange, load the form page anew (F5), fill in every field '
        'again,\nchecking each list (they start again at the page\'s defaults), and press\nits button.']),
    'logged-out': server_page('Logged out', [
        'This browser no longer sends your account\'s password to the shelf\nmanager: the next page asks '
        'for a name and password again, so nobody who\nuses this browser after you changes the shelf as you.',
        'If the next page opens without asking, this browser kept the password\n(some browsers keep it '
        'until they close): close all of its windows.',
        '<a href="/verbs/index.html">Log in again</a>'], styled=False),
    '503': server_page('Busy: nothing was sent to the shelf', [
        'As many requests as the shelf manager runs at once are still waiting\nfor the shelf. '
        'This one was not started.',
        'Try again in a minute; a request that hangs is ended after 40 seconds.']),
}


def main():
    PAGES['answer'] = ANSWER
    check = sys.argv[1:] == ['--check']
    stale = []
    pages = [(os.path.join(ROOT, f'{verb}.html'), text) for verb, text in sorted(PAGES.items())]
    pages += [(os.path.join(ROOT, '..', 'errors', f'{status}.html'), text) for status, text in ERRORS.items()]
    for path, text in pages:
        verb = os.path.basename(path)
        old = open(path).read() if os.path.exists(path) else None
        if old != text:
            stale.append(verb)
            if not check:
                with open(path, 'w') as f:
                    f.write(text)
    if check and stale:
        sys.exit('form pages out of date (run tools/forms/make_forms.py): ' + ' '.join(stale))


if __name__ == '__main__':
    main()
