#include "page/serve.hpp"

#include <cstdlib>

#include "cli/runner.hpp"
#include "form/form_vars.hpp"

void plan_verb(const verb_entry& verb, char* const* items, verb_plan& plan, field_watch watch) {
    form_input form;
    form.items = items;
    form.watch = watch;
    if (verb.reads == form_reading::registry) bind_params(form.params, items);
    plan.page = verb.page;
    verb.plan(form, plan);
}

int serve_verb(const verb_entry& verb) {
    int kind = request_method_kind(std::getenv("REQUEST_METHOD"));
    form_vars vars;
    if (kind == 1) vars = read_post_vars();
    verb_plan plan;
    plan_verb(verb, vars.items, plan);
    write_page(stdout, plan, run_cli_command);
    release_form_vars(vars);
    return 0;
}
