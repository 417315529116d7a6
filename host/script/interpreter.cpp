// The public face: Script and Interpreter.
#include <utility>

#include "host/script/machine.h"
#include "host/script/parser.h"
#include "host/script/script.h"

namespace host {

Script::Script(std::shared_ptr<const Program> program) : program_(std::move(program)) {}

Script Script::parse(std::string source, std::string fileName) {
  return Script(parseProgram(SourceText(std::move(source), std::move(fileName))));
}

Script Script::parseExpression(std::string source, std::string fileName) {
  return Script(parseProgramWithValue(SourceText(std::move(source), std::move(fileName))));
}

Interpreter::Interpreter(Registry& registry, std::ostream& output)
    : machine_(std::make_unique<Machine>(registry, output)) {}

Interpreter::~Interpreter() = default;

void Interpreter::setVariable(std::string_view name, Value value) {
  machine_->setVariable(name, std::move(value));
}

void Interpreter::setArguments(std::vector<std::string> arguments) {
  machine_->setArguments(std::move(arguments));
}

void Interpreter::run(const Script& script) { machine_->run(*script.program_); }

Value Interpreter::evaluate(const std::string& text, const std::string& fileName) {
  return machine_->run(*Script::parseExpression(text, fileName).program_);
}

void Interpreter::setInterruptFlag(const volatile sig_atomic_t* flag) {
  machine_->setInterruptFlag(flag);
}

}  // namespace host
