// The sensor and event-log verbs end to end: every page byte for byte and
// exactly what shelfctl received, or that it never ran.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "verb_cases.hpp"

namespace {

struct verb_literals {
    std::string name;
    page_literals page;
};

const verb_literals sensor = {
    "sensor",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Sensor Information "
     "</TITLE></HEAD><BODY>",
     "<H2> Sensor Information </H2>", "<A HREF=\"/verbs/sensor.html\"> Back to the previous page </A>"}};
const verb_literals sensordata = {
    "sensordata",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Sensor Data Information "
     "</TITLE></HEAD><BODY>",
     "<H2> Sensor Data Information </H2>", "<A HREF=\"/verbs/sensordata.html\"> Back to the previous page </A>"}};
const verb_literals getthreshold = {
    "getthreshold",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Get Sensor Threshold "
     "Information </TITLE></HEAD><BODY>",
     "<H2> Sensor Threshold Information </H2>",
     "<A HREF=\"/verbs/getthreshold.html\"> Back to the previous page </A>"}};
const verb_literals gethysteresis = {
    "gethysteresis",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE>Corvane&#8482; Shelf Manager, Get Sensor Hysteresis "
     "Information </TITLE></HEAD><BODY>",
     "<H2> Sensor Hysteresis Information </H2>",
     "<A HREF=\"/verbs/gethysteresis.html\"> Back to the previous page </A>"}};
const verb_literals setthreshold = {
    "setthreshold",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set Sensor Threshold "
     "</TITLE></HEAD><BODY>",
     "<H2> Set Sensor Threshold</H2>", "<A HREF=\"/verbs/setthreshold.html\"> Back to the previous page </A>"}};
const verb_literals sethysteresis = {
    "sethysteresis",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set Sensor Hysteresis "
     "</TITLE></HEAD><BODY>",
     "<H2> Set Sensor Hysteresis</H2>", "<A HREF=\"/verbs/sethysteresis.html\"> Back to the previous page </A>"}};
const verb_literals getsensoreventenable = {
    "getsensoreventenable",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Get Sensor Event Enable "
     "Mask</TITLE></HEAD><BODY>",
     "<H2> Get Sensor Event Enable Mask</H2>",
     "<A HREF=\"/verbs/getsensoreventenable.html\"> Back to the previous page </A>"}};
const verb_literals setsensoreventenable = {
    "setsensoreventenable",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Set Sensor Event Enable "
     "Mask</TITLE></HEAD><BODY>",
     "<H2> Set Sensor Event Enable Mask</H2>",
     "<A HREF=\"/verbs/setsensoreventenable.html\"> Back to the previous page </A>"}};
const verb_literals sel_information = {
    "sel",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, SEL Information "
     "</TITLE></HEAD><BODY>",
     "<H2> SEL Information </H2>", "<A HREF=\"/verbs/sel.html\"> Back to the previous page </A>"}};
const verb_literals sel_clear = {
    "sel",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, SEL Clear "
     "</TITLE></HEAD><BODY>",
     "<H2> SEL Clear </H2>", "<A HREF=\"/verbs/sel.html\"> Back to the previous page </A>",
     "</P><HR>", "<HR>"}};
const verb_literals sel_info = {
    "sel",
    {"Content-type: text/html\n\n<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, SEL Info "
     "</TITLE></HEAD><BODY>",
     "<H2> SEL Info </H2>", "<A HREF=\"/verbs/sel.html\"> Back to the previous page </A>"}};

const std::string verbose_note = "Verbose mode turned on <BR>";
const std::string all_parameters = "It is necessary to specify all parameters<BR>";
const std::string the_parameters = "It is necessary to specify the parameters<BR>";
const std::string mask_pair = "Deasserted mask must be specified along with the asserted mask<BR>";
const std::string too_long = "The command is too long to send<BR>";
const std::string line_break = "A value may not contain a line break<BR>";

const std::optional<std::string> by_get = std::nullopt;
// Values a shell would interpret; they must reach the tool as plain text.
const std::string evil = "$(reboot)";
const std::string evil2_body = "`id`;\"'\\n|%26";
const std::string evil2 = "`id`;\"'\\n|&";
const std::string long_value(300, 'x');

// The tool's command, or the message that stands in for its answer.
struct outcome {
    std::optional<std::string> command;
    std::string message;
};
outcome runs(std::string command) { return {std::move(command), ""}; }
outcome refused(std::string message) { return {std::nullopt, std::move(message)}; }

struct row {
    std::optional<std::string> body;  // by_get: a GET request
    std::string notes;
    outcome want;
};

void check(const verb_literals& verb, const row& r) {
    expect_verb_page(verb.name, verb.page, {r.body, r.notes, r.want.command.value_or(""), r.want.message});
}

}  // namespace

// sensor, sensordata, getthreshold and gethysteresis behave alike; each
// row's command is the verb word followed by the row's text.
TEST(SensorE2E, ReadingVerbsBuildTheirCommandFromTheChosenForm) {
    const std::string full1 = "&pti_sym1_1=p&id2_1=2&id3_0=3&addr1_0=20";
    const std::string full0 = "&addr1_0=20&id3_0=3&pti_sym1_1=p&id2_1=2";
    const row rows[] = {
        {by_get, "", runs("   ")},
        {"req_type=1&pti_sym1_1=p&id2_1=2&id3_0=3", "", runs("  p 2 3")},
        {"req_type=+1" + full1, "", runs("  p 2 3")},
        {"req_type=%201" + full1, "", runs("  p 2 3")},
        {"req_type=01" + full1, "", runs("  p 2 3")},
        {"req_type=1x" + full1, "", runs("  p 2 3")},
        {"req_type=2" + full0, "", runs("  20 3")},
        {"req_type=abc" + full0, "", runs("  20 3")},
        {"req_type=0" + full0, "", runs("  20 3")},
        {"req_type=4294967297" + full0, "", runs("  20 3")},
        {"req_type=" + full0, "", runs("  20 3")},
        {full0, "", runs("  20 3")},
        {"req_type=1&pti_sym1_1=p&id3_0=3", "", runs("  p  ")},
        {"req_type=1&id2_1=2&id3_0=3", "", runs("   2 3")},
        {"id3_0=3", "", runs("   ")},
        {"addr1_0=20", "", runs("  20 ")},
        {"verbose=-v&addr1_0=20&id3_0=3", verbose_note, runs(" -v 20 3")},
        {"verbose=1&req_type=1&pti_sym1_1=p&id2_1=2&id3_0=3", verbose_note, runs(" 1 p 2 3")},
        {"verbose=&verbose=a+b", verbose_note, runs(" a b  ")},
        {"verbose=&addr1_0=20", "", runs("  20 ")},
        {"verbose=" + evil + "&addr1_0=" + evil2_body + "&id3_0=%3B", verbose_note,
         runs(" " + evil + " " + evil2 + " ;")},
        {"verbose=v&addr1_0=" + std::string(5000, 'a'), verbose_note, refused(too_long)},
        {"addr1_0=20&id3_0=3%0Arm", "", refused(line_break)},
        {"req_type=1&pti_sym1_1=a%0Db", "", refused(line_break)},
        {"req_type=1&pti_sym1_1=a%0Ab&id2_1=" + long_value, "", refused(line_break)},
    };
    for (const verb_literals* verb : {&sensor, &sensordata, &getthreshold, &gethysteresis}) {
        for (row r : rows) {
            if (r.want.command) r.want.command = verb->name + *r.want.command;
            check(*verb, r);
        }
        // The longest sendable command is 228 characters: the word, two
        // blanks, the address and a trailing blank.
        std::string fits(228 - verb->name.size() - 3, 'a');
        check(*verb, {"addr1_0=" + fits, "", runs(verb->name + "  " + fits + " ")});
        check(*verb, {"addr1_0=" + fits + "a", "", refused(too_long)});
    }
}

// setthreshold and sethysteresis share their rule; only setthreshold
// carries `raw`, between `tr` and `value`.
TEST(SensorE2E, SetThresholdAndHysteresisRunOnACompleteGroup) {
    const struct {
        std::optional<std::string> body;
        outcome threshold, hysteresis;
    } rows[] = {
        {by_get, refused(all_parameters), refused(all_parameters)},
        {"addr1_0=20&id3_0=3&tr=unc&raw=r&value=9", runs("setthreshold  20 3 unc r 9"),
         runs("sethysteresis  20 3 unc 9")},
        {"addr1_0=20&id3_0=3&tr=unc&value=9", runs("setthreshold  20 3 unc  9"), runs("sethysteresis  20 3 unc 9")},
        {"req_type=1&addr1_0=20&id3_0=3&tr=unc&value=9", runs("setthreshold    3 unc  9"),
         runs("sethysteresis    3 unc 9")},
        {"req_type=01&verbose=-v&pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&raw=r&value=9&addr1_0=20",
         runs("setthreshold -v p 2 3 unc r 9"), runs("sethysteresis -v p 2 3 unc 9")},
        {"pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&value=9", runs("setthreshold   3 unc  9"),
         runs("sethysteresis   3 unc 9")},
        {"req_type=4294967297&verbose=-v&pti_sym1_1=p&id2_1=2&id3_0=3&tr=unc&value=9",
         runs("setthreshold -v  3 unc  9"), runs("sethysteresis -v  3 unc 9")},
        {"verbose=-v&pti_sym1_1=p&id2_1=2&addr1_0=20&id3_0=3&tr=unc&raw=r", refused(all_parameters),
         refused(all_parameters)},
        {"addr1_0=20&id3_0=3&tr=unc&raw=9", refused(all_parameters), refused(all_parameters)},
        {"addr1_0=20&id3_0=3&value=9&raw=r", refused(all_parameters), refused(all_parameters)},
        {"addr1_0=20&tr=unc&value=9&pti_sym1_1=p&id2_1=2", refused(all_parameters), refused(all_parameters)},
        {"req_type=1&id2_1=2&id3_0=3&tr=unc&value=9", refused(all_parameters), refused(all_parameters)},
        {"req_type=1&pti_sym1_1=p&id3_0=3&tr=unc&value=9", refused(all_parameters), refused(all_parameters)},
        {"addr1_0=" + evil + "&id3_0=" + evil2_body + "&tr=%7C&value=%26",
         runs("setthreshold  " + evil + " " + evil2 + " |  &"), runs("sethysteresis  " + evil + " " + evil2 + " | &")},
        {"addr1_0=20&id3_0=3&tr=unc&value=" + long_value, refused(too_long), refused(too_long)},
        {"addr1_0=20&id3_0=3&tr=%0D&value=9%0Areboot", refused(line_break), refused(line_break)},
        {"addr1_0=20&id3_0=3&tr=unc&raw=" + long_value, refused(all_parameters), refused(all_parameters)},
        {"addr1_0=" + long_value + "%0A&id3_0=3&tr=unc", refused(all_parameters), refused(all_parameters)},
    };
    for (const auto& r : rows) {
        check(setthreshold, {r.body, "", r.threshold});
        check(sethysteresis, {r.body, "", r.hysteresis});
    }
}

TEST(SensorE2E, GetSensorEventEnableAlwaysRuns) {
    const row rows[] = {
        {by_get, "", runs("getsensoreventenable  ")},
        {"addr1_0=20&id3_0=3&pti_sym1_1=p&id2_1=2", "", runs("getsensoreventenable 20 3")},
        {"addr1_0=20", "", runs("getsensoreventenable 20 ")},
        {"id3_0=3", "", runs("getsensoreventenable  ")},
        {"req_type=1&pti_sym1_1=p&id2_1=2&id3_0=3&addr1_0=20", "", runs("getsensoreventenable p 2 3")},
        {"req_type=1&pti_sym1_1=p&id3_0=3", "", runs("getsensoreventenable p  ")},
        {"req_type=1&id2_1=2&id3_0=3", "", runs("getsensoreventenable  2 3")},
        {"req_type=2&pti_sym1_1=p&id2_1=2&id3_0=3", "", runs("getsensoreventenable  ")},
        {"verbose=-v&addr1_0=20&id3_0=3", "", runs("getsensoreventenable 20 3")},
        {"addr1_0=" + evil + "&id3_0=" + evil2_body, "", runs("getsensoreventenable " + evil + " " + evil2)},
        {"addr1_0=" + long_value, "", refused(too_long)},
        {"addr1_0=%0A", "", refused(line_break)},
    };
    for (const row& r : rows) check(getsensoreventenable, r);
}

TEST(SensorE2E, SetSensorEventEnableChecksInOrder) {
    const std::string set0 = "addr1_0=20&id3_0=3&id2_1=1";
    const std::string set1 = "req_type=1&pti_sym1_1=p&id2_0=0&id3_0=3&id2_1=1";
    const row rows[] = {
        {by_get, "", refused(the_parameters)},
        {set0, "", runs("setsensoreventenable 20 3 1  ")},
        {set0 + "&id2_2=a&id2_3=d", "", runs("setsensoreventenable 20 3 1 a d")},
        {set0 + "&req_type=abc&pti_sym1_1=p&id2_0=0", "", runs("setsensoreventenable 20 3 1  ")},
        {set1 + "&id2_2=a&id2_3=d&addr1_0=20", "", runs("setsensoreventenable p 0 3 1 a d")},
        {set1 + "&req_type=%201", "", runs("setsensoreventenable p 0 3 1  ")},
        {set0 + "&" + set1 + "&id2_2=a&id2_3=d&req_type=2", "", refused(the_parameters)},
        {set0 + "&req_type=4294967297", "", refused(the_parameters)},
        {set0 + "&req_type=-1", "", refused(the_parameters)},
        {"id3_0=3&id2_1=1", "", refused(the_parameters)},
        {"addr1_0=20&id2_1=1", "", refused(the_parameters)},
        {"addr1_0=20&id3_0=3", "", refused(the_parameters)},
        {set0 + "&req_type=1&pti_sym1_1=p", "", refused(the_parameters)},
        {"req_type=1&pti_sym1_1=p&id2_0=0&id2_1=1", "", refused(the_parameters)},
        {"req_type=1&pti_sym1_1=p&id2_0=0&id3_0=3&id2_2=a", "", refused(the_parameters)},
        {"addr1_0=20&id2_3=d", "", refused(the_parameters)},
        {set0 + "&id2_2=a", "", refused(mask_pair)},
        {set0 + "&id2_3=d", "", refused(mask_pair)},
        {set1 + "&id2_3=d", "", refused(mask_pair)},
        {set0 + "&id2_2=" + evil + "&id2_3=" + evil2_body, "",
         runs("setsensoreventenable 20 3 1 " + evil + " " + evil2)},
        {set0 + "&id2_2=a&id2_3=" + long_value, "", refused(too_long)},
        {set0 + "&id2_2=a%0A&id2_3=d", "", refused(line_break)},
        {set0 + "&id2_2=" + long_value, "", refused(mask_pair)},
        {"addr1_0=" + long_value + "%0A&id2_1=1", "", refused(the_parameters)},
    };
    for (const row& r : rows) check(setsensoreventenable, r);
}

TEST(SelE2E, ReqTypeSelPicksThePageByItsExactText) {
    struct {
        const verb_literals* page;
        row r;
    } cases[] = {
        {&sel_info, {by_get, "", runs("sel info   ")}},
        {&sel_info, {"verbose=-v", "", runs("sel info -v  ")}},
        {&sel_information, {"req_type_sel=0", "", runs("sel   ")}},
        {&sel_clear, {"req_type_sel=1", "", runs("sel clear  ")}},
        {&sel_info, {"req_type_sel=2&addr1_0=20", "", runs("sel info  20 ")}},
        {&sel_info, {"req_type_sel=00&addr1_0=20", "", runs("sel info  20 ")}},
        {&sel_info, {"req_type_sel=+0&addr1_0=20", "", runs("sel info  20 ")}},
        {&sel_info, {"req_type_sel=1%20&addr1_0=20", "", runs("sel info  20 ")}},
        {&sel_info, {"req_type_sel=01", "", runs("sel info   ")}},
        {&sel_clear, {"req_type_sel=0&req_type_sel=1", "", runs("sel clear  ")}},
        {&sel_information, {"req_type_sel=0&req_type_sel=", "", runs("sel   ")}},

        {&sel_information, {"req_type_sel=0&req_type=1&id2_1=2&value=9", "", runs("sel   2 9")}},
        {&sel_information, {"req_type_sel=0&req_type=1&pti_sym1_1=p&value=9", "", runs("sel  p  ")}},
        {&sel_information,
         {"req_type_sel=0&req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&value=9&addr1_0=20", "", runs("sel -v p 2 9")}},
        {&sel_information, {"req_type_sel=0&value=9", "", runs("sel   ")}},
        {&sel_information, {"req_type_sel=0&verbose=-v&addr1_0=20&value=9&id2_1=2", "", runs("sel -v 20 9")}},
        {&sel_information, {"req_type_sel=0&req_type=2&addr1_0=20", "", runs("sel  20 ")}},

        {&sel_info, {"req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&addr1_0=20", "", runs("sel info -v p 2")}},
        {&sel_info, {"req_type=1x&pti_sym1_1=p", "", runs("sel info  p ")}},
        {&sel_info, {"addr1_0=20&value=9&pti_sym1_1=p", "", runs("sel info  20 ")}},

        {&sel_clear, {"req_type_sel=1&verbose=-v&value=9&addr1_0=20", "", runs("sel clear 20 ")}},
        {&sel_clear, {"req_type_sel=1&req_type=1&verbose=-v&pti_sym1_1=p&id2_1=2&value=9", "", runs("sel clear p 2")}},
        {&sel_clear, {"req_type_sel=1&req_type=1&id2_1=2", "", runs("sel clear  2")}},

        {&sel_information,
         {"req_type_sel=0&verbose=" + evil2_body + "&addr1_0=" + evil + "&value=%3B", "",
          runs("sel " + evil2 + " " + evil + " ;")}},
        {&sel_info, {"verbose=" + evil + "&addr1_0=" + evil2_body, "", runs("sel info " + evil + " " + evil2 + " ")}},
        {&sel_clear,
         {"req_type_sel=1&req_type=1&pti_sym1_1=" + evil + "&id2_1=" + evil2_body, "",
          runs("sel clear " + evil + " " + evil2)}},
        {&sel_information, {"req_type_sel=0&addr1_0=" + long_value, "", refused(too_long)}},
        {&sel_clear, {"req_type_sel=1&addr1_0=" + long_value, "", refused(too_long)}},
        {&sel_info, {"verbose=" + long_value, "", refused(too_long)}},
        {&sel_information, {"req_type_sel=0&verbose=%0A", "", refused(line_break)}},
        {&sel_clear, {"req_type_sel=1&addr1_0=a%0Db", "", refused(line_break)}},
        {&sel_info, {"addr1_0=%0A", "", refused(line_break)}},
    };
    for (const auto& c : cases) check(*c.page, c.r);
}
