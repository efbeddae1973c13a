#include "html/script_library.h"

#include <cstring>
#include <ctime>
#include <string>

#include "html/page.h"
#include "i18n/date_text.h"
#include "i18n/language.h"
#include "i18n/page_text.h"
#include "platform/formatter.h"
#include "platform/output_profile.h"
#include "platform/system.h"
#include "state/request_state.h"

namespace html {

const char kStyleSheetLink[] =
    "<link rel=\"stylesheet\" type=\"text/css\" href=\"./LXRAdmin.css\">";

bool StyleSheetFileExists() {
    return KvAccess("./LXRAdmin.css", 0) == 0;
}

namespace {

// The request time as the browser's Date parses it, in UTC with the
// catalogue's day and month names: "Wed, 5 Jan 2005 10:20:30 GMT".
std::string RequestTimeText() {
    struct tm t;
    std::memset(&t, 0, sizeof t);
    if (gmtime_r(&Now, &t) == nullptr) std::memset(&t, 0, sizeof t);
    // Read back by LocalDate in the browser, which knows English names only:
    // the strict profile writes those (see OutDate).
    return DateText(t, StrictOutput());
}

// The script library. Each writer prints one function body, its lines
// indented four blanks per level; the bodies are printf formats ("%%" is a
// "%"), and the texts they take are catalogue texts inserted as they are:
// a translation with an apostrophe breaks the script, as it always has.

void Pad2() {
    prtFormatter.printf(R"(    var s = x.toString();
    while (s.length < 2)
        s = '0' + s;
    return s;
)");
}

void LogEntry() {
    prtFormatter.printf(R"(    var Dt = new Date(D);
    var T = Dt.getFullYear() + '-' + Pad2(Dt.getMonth() + 1) + '-' + Pad2(Dt.getDate()) +
        '&nbsp;' + Pad2(Dt.getHours()) + ':' + Pad2(Dt.getMinutes()) + ':' + Pad2(Dt.getSeconds());
    W.document.write('<tr>');
    W.document.write('<td width="1%%" valign="top" nowrap><nobr>' + T + '</nobr></td>');
    W.document.write('<td width="1%%" valign="top" nowrap><nobr>' + S + '</nobr></td>');
    W.document.write('<td width="1%%" valign="top" nowrap><nobr>' + I + '</nobr></td>');
    W.document.write('<td valign="top" nowrap><nobr>' + C + '</nobr></td>');
    W.document.write('</tr>');
)");
}

// The date choices' onClick scripts reach the row's status picture as
// DisplayForm.elements['<name>_IMAGE'], but a picture is not a form control,
// so browsers find nothing there. The picture is already on the page when the
// date controls are written, so it is named among the form's elements here.
void DateEntry() {
    std::string m[12];
    for (int i = 0; i < 12; ++i) m[i] = MonthName(i, false);
    prtFormatter.printf(R"(    var Months = new Array('%s', '%s', '%s', '%s', '%s', '%s',
        '%s', '%s', '%s', '%s', '%s', '%s');
    var Dt;
    var i;
    if (strDate != '')
        Dt = new Date(strDate);
    else
        Dt = new Date(Now().getFullYear(), 0, 1, 0, 0, 0);
    var Open = '<SELECT NAME="' + strName;
    var Change = '" onChange="' + strClick + '">';
    document.write(Open + '_DAY' + Change);
    for (i = 1; i <= 31; i++)
        document.write('<OPTION VALUE="' + Pad2(i) + '"' + (i == Dt.getDate() ? ' SELECTED' : '') +
            '>' + Pad2(i) + '</OPTION>');
    document.write('</SELECT>');
    document.write(Open + '_MONTH' + Change);
    for (i = 0; i < 12; i++)
        document.write('<OPTION VALUE="' + i + '"' + (i == Dt.getMonth() ? ' SELECTED' : '') +
            '>' + Months[i] + '</OPTION>');
    document.write('</SELECT>');
    document.write(Open + '_YEAR' + Change);
    for (i = Math.min(Dt.getFullYear(), Now().getFullYear()); i < 2050; i++)
        document.write('<OPTION VALUE="' + i + '"' + (i == Dt.getFullYear() ? ' SELECTED' : '') +
            '>' + i + '</OPTION>');
    document.write('</SELECT>');
    document.write(Open + '_HOUR' + Change);
    for (i = 0; i < 24; i++)
        document.write('<OPTION VALUE="' + Pad2(i) + '"' + (i == Dt.getHours() ? ' SELECTED' : '') +
            '>' + Pad2(i) + '</OPTION>');
    document.write('</SELECT>');
    document.write(Open + '_MINUTE' + Change);
    for (i = 0; i < 60; i++)
        document.write('<OPTION VALUE="' + Pad2(i) + '"' + (i == Dt.getMinutes() ? ' SELECTED' : '') +
            '>' + Pad2(i) + '</OPTION>');
    document.write('</SELECT>');
    document.write(Open + '_SECOND' + Change);
    for (i = 0; i < 60; i++)
        document.write('<OPTION VALUE="' + Pad2(i) + '"' + (i == Dt.getSeconds() ? ' SELECTED' : '') +
            '>' + Pad2(i) + '</OPTION>');
    document.write('</SELECT>');
    var F = document.forms['DisplayForm'];
    if (F && !F.elements[strName + '_IMAGE'] && document.images[strName + '_IMAGE'])
        F.elements[strName + '_IMAGE'] = document.images[strName + '_IMAGE'];
)",
                        m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11]);
}

// February 29 to 31 pass in every year divisible by four and the century
// rule is not applied: the directory accepts what this check accepts.
void InvalidDate() {
    PageText invalid(LangWithID, "KV-LXR-12059", "This is not a valid date.");
    prtFormatter.printf(R"(    var F = document.DisplayForm;
    var YYYY = parseInt(F.elements[strField + '_YEAR'].value, 10);
    var MM = parseInt(F.elements[strField + '_MONTH'].value, 10);
    var DD = parseInt(F.elements[strField + '_DAY'].value, 10);
    if (MM == 0 || MM == 2 || MM == 4 || MM == 6 || MM == 7 || MM == 9 || MM == 11)
        return false;
    if (MM != 1)
    {
        if (DD > 30)
        {
            alert('%s');
            F.elements[strField + '_DAY'].focus();
            return true;
        }
        return false;
    }
    if (DD < 29)
        return false;
    if (YYYY %% 4 != 0 && DD > 28)
    {
        alert('%s');
        F.elements[strField + '_DAY'].focus();
        return true;
    }
    return false;
)",
                        invalid.buffer, invalid.buffer);
}

void NowFunction() {
    prtFormatter.printf(R"(    return new Date;
)");
}

void GetDate() {
    prtFormatter.printf(R"(    var F = document.DisplayForm;
    return new Date(parseInt(F.elements[strField + '_YEAR'].value, 10),
        parseInt(F.elements[strField + '_MONTH'].value, 10),
        parseInt(F.elements[strField + '_DAY'].value, 10),
        parseInt(F.elements[strField + '_HOUR'].value, 10),
        parseInt(F.elements[strField + '_MINUTE'].value, 10),
        parseInt(F.elements[strField + '_SECOND'].value, 10), 0);
)");
}

void ConvertDate() {
    prtFormatter.printf(R"(    var Dt = GetDate(strField);
    var S = '' + Dt.getUTCFullYear() + Pad2(Dt.getUTCMonth() + 1) + Pad2(Dt.getUTCDate()) +
        Pad2(Dt.getUTCHours()) + Pad2(Dt.getUTCMinutes()) + Pad2(Dt.getUTCSeconds()) + 'Z';
    var C = document.DisplayForm.elements[strField + '_COMMENT'];
    if (C && C.value != '')
        S = S + ' ' + C.value;
    return S;
)");
}

// The styles go into the history frame's own document. With a stylesheet
// file the link line stands inside the style element, as it always has.
void DocHead() {
    PageText filler(Lang, "KV-LXR-12022", " ");
    prtFormatter.printf(R"(    W.document.writeln('<html><head>');
    W.document.writeln('<style>');
    W.document.writeln('<!--');
)");
    if (StyleSheetFileExists()) {
        prtFormatter.printf("    W.document.writeln('%s');\n", kStyleSheetLink);
    } else {
        // Each line as "    W.document.writeln('%s');\n" writes it, without
        // a copy of the line.
        static const char kOpen[] = "    W.document.writeln('";
        static const char kClose[] = "');\n";
        const char* line = DefaultStyles;
        while (*line) {
            const char* end = std::strchr(line, '\n');
            size_t length = end ? static_cast<size_t>(end - line) : std::strlen(line);
            prtFormatter.write(kOpen, sizeof kOpen - 1);
            prtFormatter.write(line, length);
            prtFormatter.write(kClose, sizeof kClose - 1);
            line += end ? length + 1 : length;
        }
    }
    prtFormatter.printf(R"(    W.document.write('-->');
    W.document.writeln('</style>');
    W.document.writeln('</head>');
    W.document.writeln('<body class="DISPLAYINNERFRAME" leftmargin="0" topmargin="0" %s>');
)",
                        filler.buffer);
}

void DocFoot() {
    prtFormatter.printf(R"(    W.document.writeln('</body></html>');
)");
}

void LocalDate() {
    prtFormatter.printf(R"(    return new Date(Date.parse(strUDT)).toLocaleString();
)");
}

void InsertLocalDate2() {
    prtFormatter.printf(R"(    var Dt = new Date(strDate);
    document.write('<nobr>' + Dt.getFullYear() + '-' + Pad2(Dt.getMonth() + 1) + '-' +
        Pad2(Dt.getDate()) + '&nbsp;' + Pad2(Dt.getHours()) + ':' + Pad2(Dt.getMinutes()) + ':' +
        Pad2(Dt.getSeconds()) + '</nobr>');
)");
}

// The title is the disabled label of the page's tags (filled before the head
// of the user page is written; empty on pages that have no groups).
void CheckDisabled() {
    prtFormatter.printf(R"(    var I = document.images['GROUP-' + Field + '_IMAGE'];
    if (document.DisplayForm.elements['GROUP-' + Field].checked)
    {
        I.src = '../korvelagent/dmspages/Disabled.gif';
        I.title = '%s';
    }
    else
    {
        I.src = '../korvelagent/dmspages/Blank.gif';
        I.title = '';
    }
    return true;
)",
                        tagDisabled);
}

void CheckDisabled3() {
    prtFormatter.printf(R"(    var I = document.images['GROUP-' + Field + '_IMAGE'];
    if (Setting == 1)
    {
        I.src = '../korvelagent/dmspages/Disabled.gif';
        I.title = '%s';
    }
    else if (Setting == 2)
    {
        I.src = '../korvelagent/dmspages/Blank.gif';
        I.title = '';
    }
    else
    {
        I.src = '../korvelagent/dmspages/Unknown.gif';
        I.title = '';
    }
    return true;
)",
                        tagDisabled);
}

void NowOnly() {
    prtFormatter.printf(R"(    var F = document.DisplayForm;
    var Count = F.elements[Field + '_COUNT'];
    var When = F.elements[Field + '_DATE'];
    if (F.elements[Field].checked)
    {
        var S = LocalDate('%s');
        Count.value = '0';
        When.value = S;
    }
    else
    {
        Count.value = Count.defaultValue;
        When.value = When.defaultValue;
    }
)",
                        RequestTimeText());
}

void NumericCheck() {
    PageText digits(Lang, "KV-LXR-12015", "This field must be blank or contain only digits.");
    prtFormatter.printf(R"(    var V = Field.value;
    for (var i = 0; i < V.length; i++)
    {
        var c = V.charAt(i);
        if (c < '0' || c > '9')
        {
            alert('%s');
            Field.focus();
            return true;
        }
    }
    return false;
)",
                        digits.buffer);
}

void CommentChecked() {
    PageText blank(LangWithID, "KV-LXR-12016", "This field must be blank.");
    prtFormatter.printf(R"(    if (RequiresBlank && CommentField.value.length != 0)
    {
        alert('%s');
        CommentField.focus();
        return true;
    }
    return false;
)",
                        blank.buffer);
}

void SimpleMove() {
    prtFormatter.printf(
        R"(    document.PostForm.elements[FieldName].value = document.DisplayForm.elements[FieldName].value;
)");
}

void RadioMove() {
    prtFormatter.printf(R"(    var R = document.DisplayForm.elements[FieldName];
    for (var i = 0; i < Count; i++)
    {
        if (R[i] && R[i].checked)
        {
            document.PostForm.elements[FieldName].value = R[i].value;
            break;
        }
    }
)");
}

void PasswordCompare() {
    PageText keepBlank(Lang, "KV-LXR-15008",
                       "When not resetting the password, this field must be blank.");
    PageText needed(Lang, "KV-LXR-15009",
                    "When resetting the password, this field cannot be blank.");
    PageText differ(LangWithID, "KV-LXR-15010", "New and Confirm passwords do not match!");
    prtFormatter.printf(R"(    var P = document.DisplayForm.elements[FieldName];
    var C = document.DisplayForm.elements[FieldName + '_CONFIRM'];
    if (P.value == '')
    {
        if (C.value != '')
        {
            alert('%s');
            C.focus();
            return true;
        }
        return false;
    }
    if (C.value == '')
    {
        alert('%s');
        C.focus();
        return true;
    }
    if (P.value != C.value)
    {
        alert('%s');
        C.focus();
        return true;
    }
    return false;
)",
                        keepBlank.buffer, needed.buffer, differ.buffer);
}

struct ScriptFunction {
    const char* name;
    const char* params;
    void (*body)();
};

// The library in the order the pages have always carried it.
const ScriptFunction kScriptLibrary[] = {
    {"Pad2", "x", Pad2},
    {"LogEntry", "W, D, S, I, C", LogEntry},
    {"DateEntry", "strName, strDate, strClick", DateEntry},
    {"InvalidDate", "strField", InvalidDate},
    {"Now", "", NowFunction},
    {"GetDate", "strField", GetDate},
    {"ConvertDate", "strField", ConvertDate},
    {"DocHead", "W", DocHead},
    {"DocFoot", "W", DocFoot},
    {"LocalDate", "strUDT", LocalDate},
    {"InsertLocalDate2", "strDate", InsertLocalDate2},
    {"CheckDisabled", "Field", CheckDisabled},
    {"CheckDisabled3", "Field, Setting", CheckDisabled3},
    {"NowOnly", "Field", NowOnly},
    {"NumericCheck", "Field", NumericCheck},
    {"CommentChecked", "RequiresBlank, CommentField", CommentChecked},
    {"SimpleMove", "FieldName", SimpleMove},
    {"RadioMove", "FieldName, Count", RadioMove},
    {"PasswordCompare", "FieldName", PasswordCompare},
};

}  // namespace

void WriteScriptLibrary() {
    for (const ScriptFunction& f : kScriptLibrary) {
        prtFormatter.printf("function %s(%s)\n{\n", f.name, f.params);
        f.body();
        prtFormatter.printf("}\n");
    }
}

}  // namespace html
