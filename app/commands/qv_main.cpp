#include "app/commands/qv_commands.h"

int main(int argument_count, char** arguments) {
  return qv::qv_run_program(argument_count, arguments);
}
