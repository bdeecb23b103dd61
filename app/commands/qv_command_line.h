#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qv {

/// What a chosen command does once the whole command line is understood; returns the exit code.
using qv_command_action = std::function<int()>;

/// A mistake of the user in the command line, in words for him.
class qv_usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A word that the user may choose, and what it stands for.
template <class Value>
struct qv_choice {
  const char* word;
  Value value;
};

/// One command of the program, or the program itself, and what may follow it on the command line.
/// Values are stored while the line is understood, so that what receives them must live until
/// then.
class qv_command {
 public:
  /// What help says of an option or argument: its name ("--out", "MODEL"), what stands for its
  /// value ("DIR"), and what it means; lines of the meaning are divided by '\n'.
  struct description {
    std::string name;
    std::string value;
    std::string meaning;
  };
  /// Takes a word of the user; returns what is wrong with it ("is no angle"), or nothing.
  using receiver = std::function<std::string(const std::string& word)>;

  /// A command under this one.
  qv_command& add_command(const std::string& name, const std::string& summary);

  /// MODEL, which every command that reads one has.
  void add_model(std::string& model);
  /// A word that must be given, is not empty, and is known by its place. Its value's name is its
  /// own.
  void add_argument(const std::string& name, const std::string& meaning, std::string& word);
  /// Any number of words known by their place, none of them empty.
  void add_further_arguments(const std::string& name, const std::string& meaning,
                             std::vector<std::string>& words);
  /// A file that the command writes: `--out FILE`, or an argument. It must be given and name a file
  /// ("results/" does not).
  void add_out_file(const std::string& meaning, std::string& file);
  void add_written_file(const std::string& name, const std::string& meaning, std::string& file);

  void add_flag(const std::string& name, const std::string& meaning, bool& value);
  /// An option whose value may not be empty; without it `word` stays as it is.
  void add_option(const description& option, std::string& word);
  /// The same, and it must be given.
  void add_required_option(const description& option, std::string& word);
  /// An option whose value is one of the words of a table, and stands for what is beside it there.
  template <class Choices, class Value>
  void add_choice(const std::string& name, const std::string& meaning, const Choices& choices,
                  Value& value) {
    add_words(name, meaning, words_of(choices), set_chosen(choices, value), false);
  }
  /// The same, and it must be given.
  template <class Choices, class Value>
  void add_required_choice(const std::string& name, const std::string& meaning,
                           const Choices& choices, Value& value) {
    add_words(name, meaning, words_of(choices), set_chosen(choices, value), true);
  }
  /// An option that may be given several times, a value each time.
  void add_repeated_option(const description& option, std::vector<std::string>& words);
  /// An option that takes all words up to the next option.
  void add_list_option(const description& option, std::vector<std::string>& words);
  /// A number from `smallest` to `largest`; complaints call it `kind` ("share between 0 and 1").
  void add_number_option(const description& option, double smallest, double largest,
                         const std::string& kind, std::optional<double>& number);
  void add_number_option(const description& option, int smallest, int largest,
                         const std::string& kind, int& number);
  void add_number_option(const description& option, int smallest, int largest,
                         const std::string& kind, std::optional<int>& number);
  /// `--north ANGLE`, in place of what the file says.
  void add_north(std::optional<double>& angle);
  /// An option whose value `receive` understands.
  void add_option(const description& option, receiver receive);

  /// What help says at its end, examples above all.
  void set_footer(const std::string& text);
  /// What the command does when it is chosen.
  void set_action(qv_command_action action);
  /// Looks, before the action, at what the options say together; returns what is wrong, or nothing.
  void set_check(std::function<std::string()> check);

  std::string get_help() const;
  /// The command of that name under this one, or null.
  const qv_command* find_command(const std::string& name) const;

 private:
  friend class qv_command_line;
  using chooser = std::function<void(std::size_t rank)>;

  template <class Choices>
  static std::vector<std::string> words_of(const Choices& choices) {
    std::vector<std::string> words;
    words.reserve(choices.size());
    for (const auto& choice : choices) words.emplace_back(choice.word);
    return words;
  }
  // The table is kept as it is now.
  template <class Choices, class Value>
  static chooser set_chosen(const Choices& choices, Value& value) {
    return [choices, &value](std::size_t rank) { value = choices[rank].value; };
  }

  explicit qv_command(CLI::App& app) : app_(&app) {}
  void add_words(const std::string& name, const std::string& meaning,
                 const std::vector<std::string>& words, chooser choose, bool required);
  void describe_value(const description& option, receiver receive, bool required);

  CLI::App* app_;
  std::vector<std::unique_ptr<qv_command>> commands_;
  qv_command_action action_;
  std::function<std::string()> check_;
};

/// The command line of the program.
class qv_command_line {
 public:
  qv_command_line(const std::string& name, const std::string& summary, const std::string& version);
  qv_command_line(const qv_command_line&) = delete;
  qv_command_line& operator=(const qv_command_line&) = delete;
  ~qv_command_line();

  qv_command& get_program() { return *program_; }

  /// The action of the command that is chosen, or one that prints the help or the version asked
  /// for. Throws `qv_usage_error`.
  qv_command_action understand(int argument_count, const char* const* arguments);

 private:
  std::unique_ptr<CLI::App> app_;
  std::unique_ptr<qv_command> program_;
};

/// The number that `text` is from its first to its last character, in the notation of C whatever
/// the locale; nothing for anything else, and for what is not finite.
std::optional<double> qv_read_number(const std::string& text);

}  // namespace qv
