#include "page/fixed_verbs.hpp"

const verb_page version_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, Version Information </TITLE>",
    .heading = "<H2> Version Information </H2>",
    .back_link = "<A HREF=\"/verbs/version.html\"> Back to the previous page </A>",
    .fixed_command = "version",
};

const verb_page session_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, Session Information </TITLE>",
    .heading = "<H2> Session Information </H2>",
    .back_link = "<A HREF=\"/verbs/session.html\"> Back to the previous page </A>",
    .fixed_command = "session",
};

const verb_page switchover_page = {
    .title = "<TITLE> Corvane&#8482; Shelf Manager, Switchover </TITLE>",
    .heading = "<H2> Switchover </H2>",
    .back_link = "<A HREF=\"/verbs/switchover.html\"> Back to the previous page </A>",
    .fixed_command = "switchover",
};

void plan_fixed_command(const form_input&, verb_plan& plan) {
    plan.command.append(plan.page->fixed_command);
}
