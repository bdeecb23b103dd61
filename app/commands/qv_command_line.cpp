#include "app/commands/qv_command_line.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <limits>
#include <utility>

#include "app/commands/qv_commands.h"

namespace qv {
namespace {

// What a message of the library says after its colon: the words of the user that it is about.
std::string words_of(const CLI::ParseError& error) {
  const std::string text = error.what();
  const auto colon = text.find(": ");
  return colon == std::string::npos ? text : text.substr(colon + 2);
}

// A mistake of the user in our own words.
std::string describe_problem(const CLI::ParseError& error) {
  const std::string words = words_of(error);
  if (dynamic_cast<const CLI::ExtrasError*>(&error) != nullptr) {
    const char* kind = words.starts_with('-') ? "option" : "argument";
    return fmt::format("unexpected {} \"{}\"", kind, words);
  }
  // A flag that was given a value.
  if (dynamic_cast<const CLI::ConversionError*>(&error) != nullptr)
    return fmt::format("cannot make sense of \"{}\"", words);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    const std::string text = error.what();
    const std::string option = text.substr(0, text.find(':'));
    return option + (words.find("missing") != std::string::npos ? " needs a value"
                                                                : " is given more than once");
  }
  return error.what();
}

// The command that the user chose, or null.
const CLI::App* chosen_command(const CLI::App& program) {
  const auto chosen = program.get_subcommands();
  return chosen.empty() ? nullptr : chosen.front();
}

// What stands where a command belongs.
std::string describe_missing_command(const std::string& word) {
  if (word.empty()) return "a command is missing";
  return fmt::format("{} \"{}\"",
                     word.starts_with('-') ? "unexpected option" : "there is no command", word);
}

std::string describe_mistake(const CLI::App& program, const std::vector<std::string>& words,
                             const CLI::ParseError& error) {
  const CLI::App* command = &program;
  std::size_t depth = 0;
  while (const CLI::App* next = chosen_command(*command)) {
    command = next;
    ++depth;
  }
  const bool lacks_command = command->get_require_subcommand_min() > 0;
  const std::string problem =
      lacks_command ? describe_missing_command(depth < words.size() ? words[depth] : "")
                    : describe_problem(error);
  const CLI::App* first = chosen_command(program);
  return fmt::format("{}; `{} help{}` explains", problem, program.get_name(),
                     first == nullptr ? "" : " " + first->get_name());
}

qv_command::receiver store_in(std::string& place) {
  return [&place](const std::string& word) {
    place = word;
    return std::string(word.empty() ? "is an empty name" : "");
  };
}

qv_command::receiver store_file_in(std::string& place) {
  return [&place](const std::string& word) {
    place = word;
    const bool names_file = !std::filesystem::path(word).filename().empty();
    return std::string(names_file ? "" : "is no name of a file");
  };
}

// "a, b or c".
std::string one_of(const std::vector<std::string>& words) {
  return fmt::format("{} or {}", fmt::join(words.begin(), words.end() - 1, ", "), words.back());
}

// Puts words into the list, none of them empty.
std::function<void(const std::vector<std::string>&)> collect_in(const std::string& name,
                                                                std::vector<std::string>& place) {
  return [name, &place](const std::vector<std::string>& words) {
    if (std::find(words.begin(), words.end(), "") != words.end())
      throw CLI::ValidationError(name + " is an empty name");
    place = words;
  };
}

// Place: a Number or an optional one.
template <class Number, class Place>
qv_command::receiver read_number(Number smallest, Number largest, const std::string& kind,
                                 Place& place) {
  return [=, &place](const std::string& text) {
    const std::optional<double> number = qv_read_number(text);
    if (!number || *number < smallest || *number > largest ||
        static_cast<double>(static_cast<Number>(*number)) != *number)
      return fmt::format("\"{}\" is no {}", text, kind);
    place = static_cast<Number>(*number);
    return std::string();
  };
}

}  // namespace

qv_command& qv_command::add_command(const std::string& name, const std::string& summary) {
  app_->require_subcommand(1);
  commands_.push_back(
      std::unique_ptr<qv_command>(new qv_command(*app_->add_subcommand(name, summary))));
  return *commands_.back();
}

void qv_command::describe_value(const description& option, receiver receive, bool required) {
  app_->add_option_function<std::string>(
          option.name,
          [name = option.name, receive = std::move(receive)](const std::string& word) {
            const std::string complaint = receive(word);
            // A complaint that begins with the user's word stands apart from the name.
            if (!complaint.empty())
              throw CLI::ValidationError(name + (complaint.starts_with('"') ? ": " : " ") +
                                         complaint);
          },
          option.meaning)
      ->required(required)
      ->option_text(option.value);
}

void qv_command::add_model(std::string& model) {
  add_argument("MODEL", "The model, a gbXML file", model);
}

void qv_command::add_argument(const std::string& name, const std::string& meaning,
                              std::string& word) {
  describe_value({name, " ", meaning}, store_in(word), true);
}

void qv_command::add_further_arguments(const std::string& name, const std::string& meaning,
                                       std::vector<std::string>& words) {
  add_list_option({name, " ", meaning}, words);
}

void qv_command::add_out_file(const std::string& meaning, std::string& file) {
  describe_value({"--out", "FILE", meaning}, store_file_in(file), true);
}

void qv_command::add_written_file(const std::string& name, const std::string& meaning,
                                  std::string& file) {
  describe_value({name, " ", meaning}, store_file_in(file), true);
}

void qv_command::add_flag(const std::string& name, const std::string& meaning, bool& value) {
  app_->add_flag(name, value, meaning);
}

void qv_command::add_option(const description& option, std::string& word) {
  describe_value(option, store_in(word), false);
}

void qv_command::add_required_option(const description& option, std::string& word) {
  describe_value(option, store_in(word), true);
}

void qv_command::add_words(const std::string& name, const std::string& meaning,
                           const std::vector<std::string>& words, chooser choose, bool required) {
  describe_value(
      {name, fmt::format("{}", fmt::join(words, "|")), meaning},
      [words, choose = std::move(choose)](const std::string& word) {
        const auto known = std::find(words.begin(), words.end(), word);
        if (known == words.end()) return fmt::format("\"{}\" is not {}", word, one_of(words));
        choose(static_cast<std::size_t>(known - words.begin()));
        return std::string();
      },
      required);
}

void qv_command::add_repeated_option(const description& option, std::vector<std::string>& words) {
  app_->add_option_function(option.name, collect_in(option.name, words), option.meaning)
      ->allow_extra_args(false)
      ->option_text(option.value);
}

void qv_command::add_list_option(const description& option, std::vector<std::string>& words) {
  app_->add_option_function(option.name, collect_in(option.name, words), option.meaning)
      ->option_text(option.value);
}

void qv_command::add_number_option(const description& option, double smallest, double largest,
                                   const std::string& kind, std::optional<double>& number) {
  describe_value(option, read_number(smallest, largest, kind, number), false);
}

void qv_command::add_number_option(const description& option, int smallest, int largest,
                                   const std::string& kind, int& number) {
  describe_value(option, read_number(smallest, largest, kind, number), false);
}

void qv_command::add_number_option(const description& option, int smallest, int largest,
                                   const std::string& kind, std::optional<int>& number) {
  describe_value(option, read_number(smallest, largest, kind, number), false);
}

void qv_command::add_north(std::optional<double>& angle) {
  constexpr double limit = std::numeric_limits<double>::max();
  add_number_option({"--north", "ANGLE",
                     "Degrees clockwise from true north of the model's +Y,\n"
                     "instead of what the file says"},
                    -limit, limit, "angle", angle);
}

void qv_command::add_option(const description& option, receiver receive) {
  describe_value(option, std::move(receive), false);
}

void qv_command::set_footer(const std::string& text) {
  app_->footer(text);
}

void qv_command::set_action(qv_command_action action) {
  action_ = std::move(action);
}

void qv_command::set_check(std::function<std::string()> check) {
  check_ = std::move(check);
}

std::string qv_command::get_help() const {
  std::string name = app_->get_name();
  for (const CLI::App* above = app_->get_parent(); above != nullptr; above = above->get_parent())
    name.insert(0, " ").insert(0, above->get_name());
  return app_->get_formatter()->make_help(app_, name, CLI::AppFormatMode::Normal);
}

const qv_command* qv_command::find_command(const std::string& name) const {
  const auto found = std::find_if(commands_.begin(), commands_.end(), [&name](const auto& command) {
    return command->app_->get_name() == name;
  });
  return found == commands_.end() ? nullptr : found->get();
}

qv_command_line::qv_command_line(const std::string& name, const std::string& summary,
                                 const std::string& version)
    : app_(std::make_unique<CLI::App>(summary, name)), program_(new qv_command(*app_)) {
  app_->set_version_flag("--version", version, "Print the version");
  app_->set_help_flag("-h,--help", "Print this help");
}

qv_command_line::~qv_command_line() = default;

qv_command_action qv_command_line::understand(int argument_count, const char* const* arguments) {
  const auto chosen = [this] {
    const qv_command* command = program_.get();
    while (const CLI::App* app = chosen_command(*command->app_))
      command = command->find_command(app->get_name());
    return command;
  };
  try {
    app_->parse(argument_count, arguments);
    const qv_command* command = chosen();
    const std::string complaint = command->check_ ? command->check_() : std::string();
    if (!complaint.empty()) throw CLI::ValidationError(complaint);
    return command->action_;
  } catch (const CLI::CallForHelp&) {
    return [help = chosen()->get_help()] {
      qv_print(help);
      return qv_exit_success;
    };
  } catch (const CLI::CallForVersion& version) {
    return [text = std::string(version.what())] {
      qv_print(text + "\n");
      return qv_exit_success;
    };
  } catch (const CLI::ParseError& error) {
    const std::vector<std::string> words(arguments + 1, arguments + std::max(argument_count, 1));
    throw qv_usage_error(describe_mistake(*app_, words, error));
  }
}

std::optional<double> qv_read_number(const std::string& text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto read = std::from_chars(text.data(), end, number);
  if (read.ec != std::errc() || read.ptr != end || !std::isfinite(number)) return {};
  return number;
}

}  // namespace qv
