// SPDX-License-Identifier: MIT
#include "glyphward-fonts/command_line.h"

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "core/text.h"
#include "platform/host_paths.h"
#include "texts/messages.h"

#include "glyphward-fonts/commands.h"
#include "glyphward-fonts/host.h"
#include "glyphward-fonts/other_root.h"
#include "glyphward-fonts/terminal_text.h"
#include "glyphward-fonts/usage.h"

#include <CLI/CLI.hpp>

namespace gw::fonts {

namespace {

constexpr const char* PROGRAM = "glyphward-fonts";

std::string standard_input() {
    return {std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
}

/// Names that stand on standard input, each in a line of its own, or with a NUL behind it.
std::vector<std::string> names_on_input(bool nul) {
    std::vector<std::string> names;
    for (std::string name; std::getline(std::cin, name, nul ? '\0' : '\n');) {
        if (!name.empty()) names.push_back(name);
    }
    return names;
}

/// "-" stands for the names on standard input.
std::vector<std::string> with_input(const std::vector<std::string>& names, bool nul) {
    std::vector<std::string> all;
    for (const std::string& name : names) {
        if (name != "-") {
            all.push_back(name);
            continue;
        }
        for (const std::string& on_input : names_on_input(nul)) all.push_back(on_input);
    }
    return all;
}

/// The paths by which the files of the command line are reached.
std::vector<std::string> all_outside(const std::vector<std::string>& paths) {
    std::vector<std::string> reached;
    reached.reserve(paths.size());
    for (const std::string& path : paths) reached.push_back(outside(path));
    return reached;
}

/// An empty word is that of a script's variable that is not set, and not a wish for what is without it.
const CLI::Validator NOT_EMPTY = not_empty();

/// The status of the program after its help. What nobody reads is no failure; what has no room is.
int status_of_output() {
    errno = 0;
    std::cout.flush();
    if (std::cout || errno == EPIPE) return static_cast<int>(Status::DONE);
    std::fprintf(stderr, "%s: %s: %s\n", PROGRAM, text_of(Message::SAYS_STANDARD_OUTPUT),
                 std::strerror(errno));
    return static_cast<int>(Status::FAILED);
}

/// Says what is wrong with the command line, and returns the exit status for that.
int refuse(const std::string& why) {
    std::fprintf(stderr, "%s: %s\n", PROGRAM, for_terminal(escaped(why)).c_str());
    std::fprintf(stderr, "%s\n", text_of(Message::SAYS_HELP_SAYS_MORE, {PROGRAM}).c_str());
    return static_cast<int>(Status::USAGE);
}

/// Names of fonts and patterns begin with "-", as options do, but have many of them.
bool is_xlfd(std::string_view argument) {
    constexpr std::ptrdiff_t FEWEST = 3;
    return argument.starts_with('-') && !argument.starts_with("--") &&
           std::count(argument.begin(), argument.end(), '-') >= FEWEST;
}

/// The arguments with the names of fonts at the end, behind "--", where they are no options.
std::vector<std::string> arranged(int argc, char** argv) {
    std::vector<std::string> arguments;
    std::vector<std::string> names;
    int at = 1;
    for (; at < argc && std::string_view(argv[at]) != "--"; ++at)
        (is_xlfd(argv[at]) ? names : arguments).emplace_back(argv[at]);
    for (++at; at < argc; ++at) names.emplace_back(argv[at]);
    if (!names.empty()) arguments.emplace_back("--");
    arguments.insert(arguments.end(), names.begin(), names.end());
    return arguments;
}

/// Programs read JSON: its texts are the same everywhere, those of the system too.
void speak_english() {
    close_catalogue();
    (void)std::setlocale(LC_MESSAGES, "C");
}

/// The words that the library puts between ours.
void translate_headings(CLI::FormatterBase& formatter) {
    formatter.column_width(34);
    formatter.label("Usage", text_of(Message::HELP_USAGE));
    formatter.label("OPTIONS", text_of(Message::HELP_OPTION));
    formatter.label("SUBCOMMAND", text_of(Message::HELP_SUBCOMMAND));
    formatter.label("Positionals", text_of(Message::HELP_POSITIONALS));
    formatter.label("REQUIRED", text_of(Message::HELP_REQUIRED));
}

/// What is not an option is called by its name; the library would also say of what kind the value is.
void leave_kinds_out(CLI::App& parent) {
    for (CLI::App* command : parent.get_subcommands([](CLI::App*) { return true; })) {
        for (CLI::Option* option : command->get_options()) {
            if (option->get_positional()) option->type_name("");
        }
        leave_kinds_out(*command);
    }
}

/// All commands with their options. What the options say is here after parsing.
class CommandLine {
  public:
    CommandLine();
    /// Parses, runs the command, and returns the exit status.
    int run(int argc, char** argv);

  private:
    using Command = std::function<Status(Report&)>;

    Status with_names(std::vector<std::string>& names, Report& report,
                      const std::function<Status()>& command);
    CLI::App* add(CLI::App& parent, const std::string& name, const std::string& about, Command command);
    void add_looking();
    void add_changing();
    void add_path();
    CLI::App* add_path_command(CLI::App& path, const std::string& name, const std::string& about,
                               const Command& command);
    void add_display(CLI::App* command);
    void only_one_of(Message heading, std::vector<CLI::Option*> options);
    [[nodiscard]] std::string what_is_too_much() const;
    [[nodiscard]] PathOptions path_options() const;
    [[nodiscard]] int execute();

    CLI::App app_{text_of(Message::HELP_PROGRAM), PROGRAM};
    std::string chosen_;
    Command command_;
    std::vector<std::vector<CLI::Option*>> alternatives_;

    Settings settings_;
    ListFilter filter_;
    WhyOptions why_;
    FontsetOptions fontset_;
    InstallOptions install_;
    DeleteOptions delete_;
    ExportOptions export_;
    std::vector<std::string> names_;
    std::string display_;
    std::string whose_ = "me";
    std::string element_;
    std::string action_;
    int place_ = 1;
    bool all_ = false;
    bool in_front_ = false;
    bool empties_ = false;
    bool mine_ = false;
    bool everyones_ = false;
    bool replaces_ = false;
    bool keeps_ = false;
    bool checks_ = false;
};

/// Runs the command when `names` has those of standard input in the place of "-". Where none are there, it is
/// not run: without names it would be about all fonts.
Status CommandLine::with_names(std::vector<std::string>& names, Report& report,
                               const std::function<Status()>& command) {
    const bool are_given = !names.empty();
    names = with_input(names, settings_.nul);
    if (!are_given || !names.empty()) return command();
    report.trouble(text_of(Message::SAYS_STANDARD_INPUT), Message::SAYS_NO_NAMES);
    return Status::FAILED;
}

CLI::App* CommandLine::add(CLI::App& parent, const std::string& name, const std::string& about,
                           Command command) {
    CLI::App* added = parent.add_subcommand(name, about);
    added->group(text_of(Message::HELP_SUBCOMMANDS));
    added->add_flag("--json", settings_.json, text_of(Message::HELP_JSON));
    added->add_flag("-n,--dry-run", settings_.dry_run, text_of(Message::HELP_DRY_RUN));
    added->add_flag("-q,--quiet", settings_.quiet, text_of(Message::HELP_QUIET));
    added->add_flag("-0,--null", settings_.nul, text_of(Message::HELP_NULL));
    added->add_option("--root", settings_.root, text_of(Message::HELP_ROOT))
        ->type_name("DIR")
        ->check(NOT_EMPTY);
    const std::string full_name = &parent == &app_ ? name : parent.get_name() + ' ' + name;
    added->callback([this, full_name, command = std::move(command)] {
        chosen_ = full_name;
        if (!command_) command_ = command;
    });
    return added;
}

void CommandLine::add_display(CLI::App* command) {
    command->add_option("--server", display_, text_of(Message::HELP_SERVER))->type_name("DISPLAY");
}

/// The help shows them under a heading of their own.
void CommandLine::only_one_of(Message heading, std::vector<CLI::Option*> options) {
    for (CLI::Option* option : options) option->group(text_of(Message::HELP_ONE_OF, {text_of(heading)}));
    alternatives_.push_back(std::move(options));
}

/// What is wrong when several options are given of which only one can be; "" when it is right.
std::string CommandLine::what_is_too_much() const {
    for (const std::vector<CLI::Option*>& options : alternatives_) {
        std::string given;
        int count = 0;
        for (const CLI::Option* option : options) {
            if (option->count() == 0) continue;
            given += (given.empty() ? "" : ", ") + option->get_name();
            ++count;
        }
        if (count > 1) return text_of(Message::HELP_ONLY_ONE, {given});
    }
    return "";
}

void CommandLine::add_looking() {
    CLI::App* list = add(app_, "list", text_of(Message::HELP_LIST), [this](Report& report) {
        return with_names(filter_.patterns, report, [&] { return fonts::list(filter_, report); });
    });
    list->add_option("PATTERN", filter_.patterns, text_of(Message::HELP_PATTERN));
    list->add_flag("-l,--long", filter_.is_long, text_of(Message::HELP_LONG));
    list->add_option("--format", filter_.format, text_of(Message::HELP_FORMAT))
        ->type_name("FORMAT")
        ->check(one_of({"type1", "truetype", "opentype", "bitmap", "alias"}));
    list->add_option("--scope", filter_.scope, text_of(Message::HELP_SCOPE))
        ->type_name("SCOPE")
        ->check(one_of({"mine", "everyone"}));
    list->add_option("--charset", filter_.charset, text_of(Message::HELP_CHARSET))
        ->type_name("REGISTRY-ENCODING");
    list->add_option("--owner", filter_.owner, text_of(Message::HELP_OWNER))->type_name("USER");
    list->add_flag("--unusable", filter_.is_unusable, text_of(Message::HELP_UNUSABLE));

    CLI::App* verify = add(app_, "verify", text_of(Message::HELP_VERIFY), [this](Report& report) {
        return with_names(names_, report, [&] { return fonts::verify(all_outside(names_), report); });
    });
    verify->add_option("FILE", names_, text_of(Message::HELP_VERIFIED))->required();

    CLI::App* why = add(app_, "why", text_of(Message::HELP_WHY), [this](Report& report) {
        if (why_.text == "-") why_.text = standard_input();
        why_.display = display_;
        return fonts::why(why_, report);
    });
    why->add_option("TEXT", why_.text, text_of(Message::HELP_TEXT))->required();
    why->add_option("--cure", why_.cure, text_of(Message::HELP_CURE))->type_name("NUMBER")->check(from_one());
    add_display(why);

    CLI::App* fontset = add(app_, "fontset", text_of(Message::HELP_FONTSET), [this](Report& report) {
        fontset_.display = display_;
        return fonts::fontset(fontset_, report);
    });
    fontset->add_option("LOCALE", fontset_.locale, text_of(Message::HELP_LOCALE))->required();
    fontset->add_option("NAMES", fontset_.base_names, text_of(Message::HELP_BASE_NAMES));
    add_display(fontset);

    add_display(add(app_, "doctor", text_of(Message::HELP_DOCTOR),
                    [this](Report& report) { return fonts::doctor(display_, report); }));
}

void CommandLine::add_changing() {
    CLI::App* install = add(app_, "install", text_of(Message::HELP_INSTALL), [this](Report& report) {
        if (everyones_) install_.destination = Destination::EVERYONE;
        if (!install_.directory.empty()) install_.destination = Destination::DIRECTORY;
        if (replaces_) install_.if_there = IfThere::REPLACE;
        if (keeps_) install_.if_there = IfThere::KEEP;
        return with_names(install_.sources, report, [&] {
            install_.sources = all_outside(install_.sources);
            return fonts::install(install_, report);
        });
    });
    install->add_option("FILE", install_.sources, text_of(Message::HELP_SOURCES))->required();
    only_one_of(Message::HELP_WHERE,
                {install->add_option("--to", install_.directory, text_of(Message::HELP_TO))
                     ->type_name("DIR")
                     ->check(NOT_EMPTY),
                 install->add_flag("--me", mine_, text_of(Message::HELP_ME)),
                 install->add_flag("--everyone", everyones_, text_of(Message::HELP_EVERYONE))});
    only_one_of(Message::HELP_IF_THERE,
                {install->add_flag("--replace", replaces_, text_of(Message::HELP_REPLACE)),
                 install->add_flag("--keep", keeps_, text_of(Message::HELP_KEEP))});

    CLI::App* removal = add(app_, "delete", text_of(Message::HELP_DELETE), [this](Report& report) {
        return with_names(delete_.patterns, report, [&] { return fonts::delete_fonts(delete_, report); });
    });
    removal->add_option("PATTERN", delete_.patterns, text_of(Message::HELP_AS_FOR_LIST))->required();
    removal->add_flag("-y,--yes", delete_.is_agreed, text_of(Message::HELP_YES));
    removal->add_flag("--force", delete_.is_forced, text_of(Message::HELP_FORCE));

    CLI::App* apply = add(app_, "apply", text_of(Message::HELP_APPLY), [this](Report& report) {
        return fonts::apply(outside(element_), checks_, report);
    });
    apply->add_option("PROFILE", element_, text_of(Message::HELP_PROFILE))->required();
    apply->add_flag("--check", checks_, text_of(Message::HELP_CHECK));

    CLI::App* exporting = add(app_, "export", text_of(Message::HELP_EXPORT), [this](Report& report) {
        export_.fonts = mine_ ? Destination::ME : Destination::EVERYONE;
        export_.directory = outside(export_.directory);
        if (!export_.fonts_of.empty()) export_.fonts = Destination::DIRECTORY;
        return fonts::export_profile(export_, report);
    });
    exporting->add_option("DIR", export_.directory, text_of(Message::HELP_EXPORT_DIR))
        ->required()
        ->check(NOT_EMPTY);
    only_one_of(Message::HELP_WHOSE_FONTS,
                {exporting->add_option("--from", export_.fonts_of, text_of(Message::HELP_FROM))
                     ->type_name("DIR")
                     ->check(NOT_EMPTY),
                 exporting->add_flag("--me", mine_, text_of(Message::HELP_OWN_FONTS)),
                 exporting->add_flag("--everyone", everyones_, text_of(Message::HELP_EVERYONES_FONTS))});

    CLI::App* undo = add(app_, "undo", text_of(Message::HELP_UNDO),
                         [this](Report& report) { return fonts::undo(action_, report); });
    undo->add_option("ID", action_, text_of(Message::HELP_UNDO_ID));

    CLI::App* trash = add(app_, "trash", text_of(Message::HELP_TRASH),
                          [this](Report& report) { return fonts::trash(empties_, report); });
    trash->add_flag("--empty", empties_, text_of(Message::HELP_EMPTY));
}

PathOptions CommandLine::path_options() const {
    static const std::map<std::string, WhosePath> WORDS = {{"me", WhosePath::ME},
                                                           {"host", WhosePath::HOST},
                                                           {"installation", WhosePath::INSTALLATION},
                                                           {"session", WhosePath::SESSION}};
    return {WORDS.at(whose_), in_front_, display_};
}

CLI::App* CommandLine::add_path_command(CLI::App& path, const std::string& name, const std::string& about,
                                        const Command& command) {
    CLI::App* added = add(path, name, about, command);
    added->add_option("--of", whose_, text_of(Message::HELP_OF))
        ->type_name("WHOSE")
        ->check(one_of({"me", "host", "installation", "session"}));
    add_display(added);
    return added;
}

void CommandLine::add_path() {
    CLI::App* path = app_.add_subcommand("path", text_of(Message::HELP_PATH));
    path->group(text_of(Message::HELP_SUBCOMMANDS));
    path->require_subcommand(1);
    add_path_command(*path, "show", text_of(Message::HELP_SHOW), [this](Report& report) {
        return show_path(path_options(), all_, report);
    })->add_flag("--all", all_, text_of(Message::HELP_ALL));
    CLI::App* adding = add_path_command(*path, "add", text_of(Message::HELP_ADD), [this](Report& report) {
        return with_names(names_, report, [&] { return add_to_path(path_options(), names_, report); });
    });
    adding->add_option("ELEMENT", names_, text_of(Message::HELP_ADDED))->required();
    adding->add_flag("--front", in_front_, text_of(Message::HELP_FRONT));
    CLI::App* removing =
        add_path_command(*path, "remove", text_of(Message::HELP_REMOVE), [this](Report& report) {
            return with_names(names_, report,
                              [&] { return remove_from_path(path_options(), names_, report); });
        });
    removing->add_option("ELEMENT", names_, text_of(Message::HELP_REMOVED))->required();
    removing->add_flag("--front", in_front_, text_of(Message::HELP_FROM_FRONT));
    CLI::App* moving = add_path_command(*path, "move", text_of(Message::HELP_MOVE), [this](Report& report) {
        return move_on_path(path_options(), element_, place_, report);
    });
    moving->add_option("ELEMENT", element_, text_of(Message::HELP_MOVED))->required();
    moving->add_option("PLACE", place_, text_of(Message::HELP_PLACE))->required();
    moving->add_flag("--front", in_front_, text_of(Message::HELP_IN_FRONT));
    add_display(add(*path, "apply", text_of(Message::HELP_PATH_APPLY),
                    [this](Report& report) { return apply_path(display_, report); }));
    add_display(add(*path, "save", text_of(Message::HELP_PATH_SAVE),
                    [this](Report& report) { return save_path(display_, report); }));
}

CommandLine::CommandLine() {
    app_.option_defaults()->group(text_of(Message::HELP_OPTIONS));
    app_.set_version_flag("--version", std::string(PROGRAM) + ' ' + GLYPHWARD_VERSION,
                          text_of(Message::HELP_VERSION));
    app_.set_help_flag("-h,--help", text_of(Message::HELP_HELP));
    app_.require_subcommand(1);
    translate_headings(*app_.get_formatter());
    add_looking();
    add_changing();
    add_path();
    leave_kinds_out(app_);
}

int CommandLine::execute() {
    settings_.dry_run = settings_.dry_run || checks_;
    if (settings_.json) speak_english();
    Report report(chosen_, settings_);
    if (!settings_.root.empty()) {
        if (const Outcome entered = enter_root(settings_.root); !entered) {
            report.trouble(entered.failure());
            return report.finish(Status::COULD_NOT);
        }
    }
    const std::set<std::string> of_files = {"apply", "export", "install", "verify"};
    if (outside("/").empty() && of_files.contains(chosen_)) {
        report.trouble(settings_.root, Message::SAYS_NOT_REACHED);
        return report.finish(Status::COULD_NOT);
    }
    prepare_engine();
    return report.finish(command_(report));
}

int CommandLine::run(int argc, char** argv) {
    try {
        std::vector<std::string> arguments = arranged(argc, argv);
        std::reverse(arguments.begin(), arguments.end());  // the library takes them from the end
        app_.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            (void)app_.exit(error);
            return status_of_output();
        }
        return refuse(in_words(error));
    }
    const std::string too_much = what_is_too_much();
    return too_much.empty() ? execute() : refuse(too_much);
}

}  // namespace

int run(int argc, char** argv) {
    ::setenv("NLSPATH", DEFAULT_NLSPATH, 0);
    open_catalogue();
    CommandLine command_line;
    return command_line.run(argc, argv);
}

}  // namespace gw::fonts
