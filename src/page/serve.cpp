#include "page/serve.hpp"

#include <cstdlib>

#include "cli/runner.hpp"
#include "form/form_vars.hpp"

void plan_verb(const verb_entry& verb, char* const* items, verb_plan& plan, field_watch watch) {
    form_input form;
    form.items = items;
    form.watch = watch;
    if (verb.reads == form_reading::registry) bind_params(form.params, items);
    plan.page = &verb.page;
    plan.verb = verb.name;
    verb.plan(form, plan);
}

int serve_verb(const verb_entry& verb, char* const* env) {
    form_vars vars;
    static form_room room;
    const char* method = environment_value(env, "REQUEST_METHOD");
    if (posts_a_body(method)) vars = read_post_vars(environment_value(env, "CONTENT_LENGTH"), &room);
    verb_plan plan;
    plan_verb(verb, vars.items, plan);
    write_page(stdout, plan, run_cli_command, env);
    release_form_vars(vars);
    return 0;
}
