#include "host/script/script.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "host/core/exception.h"
#include "host/script/conversion.h"
#include "host/script/suggest.h"

namespace host {
namespace {

/// What the scripts of these tests work on.
class Box final : public Object {
 public:
  Box() : Object("Box") {}
  int32_t width = 1;
  double cell = 0;
  Ref<Object> inner;

 private:
  ~Box() override = default;
};

Box& box(Object* self) { return dynamic_cast<Box&>(*self); }

using Arguments = std::span<Value>;

using Call = std::function<Value(Object*, Arguments)>;
using Assign = std::function<void(Object*, Arguments, const Value&)>;

Member member(const char* declaration, Call call, Assign assign = {}) {
  Member result;
  result.declaration = parseDeclaration(declaration);
  result.call = std::move(call);
  result.assign = std::move(assign);
  if (result.declaration.result) result.assignedType = *result.declaration.result;
  return result;
}

Member makesText(const char* declaration, const char* text) {
  return member(declaration, [text](Object*, Arguments) { return Value{std::string(text)}; });
}

void addBox(Registry& registry) {
  Class& type = registry.addClass("Box");
  const auto make = [](Object*, Arguments arguments) {
    auto result = makeObject<Box>();
    if (!arguments.empty()) result->width = std::get<int32_t>(arguments[0]);
    return objectValue(result);
  };
  type.constructors = {member("Constructor", make), member("Constructor(width as integer)", make)};
  type.sharedMembers = {member("Open(width as integer = 7) as box", make)};
  type.members = {
      member(
          "Width as integer", [](Object* self, Arguments) { return Value{box(self).width}; },
          [](Object* self, Arguments, const Value& value) {
            box(self).width = std::get<int32_t>(value);
          }),
      member(
          "Cell(x as integer, y as double) as double",
          [](Object* self, Arguments) { return Value{box(self).cell}; },
          [](Object* self, Arguments arguments, const Value& value) {
            box(self).cell = std::get<int32_t>(arguments[0]) + std::get<double>(arguments[1]) +
                             std::get<double>(value);
          }),
      // A property to read, and the same to assign.
      member("Content as box",
             [](Object* self, Arguments) { return objectValue(box(self).inner); }),
      member("Inner as box", nullptr,
             [](Object* self, Arguments, const Value& value) {
               box(self).inner = Ref<Object>::share(objectOf(value));
             }),
      member("Me2 as box",
             [](Object* self, Arguments) { return objectValue(Ref<Object>::share(self)); }),
      member("Grow(by as integer, times as integer = 2)",
             [](Object* self, Arguments arguments) -> Value {
               box(self).width += std::get<int32_t>(arguments[0]) * std::get<int32_t>(arguments[1]);
               return Nil{};
             }),
      member("Fail(message as string)",
             [](Object*, Arguments arguments) -> Value {
               raise("UnsupportedFormatException", std::get<std::string>(arguments[0]));
             }),
      member("Break", [](Object*, Arguments) -> Value { throw std::runtime_error("disk full"); }),
  };
}

void addGlobals(Registry& registry) {
  registry.globals() = {
      makesText("Kind(x as double) as string", "double"),
      makesText("Kind(x as integer) as string", "integer"),
      makesText("Kind(x as string) as string", "string"),
      makesText("Kind(x as box) as string", "box"),
      makesText("Kind(x as color) as string", "color"),
      makesText("Kind(x as integer, y as integer = 1) as string", "integer+"),
      makesText("Kind(x as double, y as double) as string", "doubles"),
      makesText("Length(text as string) as string", "text"),
      member("Fetch(byref b as box, byref n as integer)",
             [](Object*, Arguments arguments) -> Value {
               arguments[0] = objectValue(makeObject<Box>());
               arguments[1] = Value{std::get<int32_t>(arguments[1]) + 41};
               return Nil{};
             }),
      member("Spoil(byref v as variant)",
             [](Object*, Arguments arguments) -> Value {
               arguments[0] = Value{std::string("text")};
               return Nil{};
             }),
  };
}

class ScriptTest : public testing::Test {
 protected:
  void SetUp() override {
    addBox(registry_);
    addGlobals(registry_);
  }
  void TearDown() override { EXPECT_TRUE(Object::living().empty()) << "an object leaked"; }

  /// What the script prints, and if it fails the error's text.
  std::string outcome(const std::string& source) {
    std::ostringstream output;
    try {
      const Script script = Script::parse(source, "demo.rbs");
      Interpreter interpreter(registry_, output);
      interpreter.setArguments({"first", "second"});
      interpreter.run(script);
    } catch (const ScriptError& error) {
      output << error.what();
    }
    return output.str();
  }

  struct Case {
    const char* source;
    const char* expected;
  };

  void expectOutput(std::initializer_list<Case> cases) {
    for (const auto& [source, expected] : cases) {
      EXPECT_EQ(outcome(source), std::string(expected) + "\n") << source;
    }
  }

  /// Expects errors, given without the file name, the source line and the caret.
  void expectErrors(std::initializer_list<Case> cases) {
    for (const auto& [source, expected] : cases) {
      const std::string text = outcome(source);
      EXPECT_EQ(text.substr(0, text.find('\n')), "demo.rbs:" + std::string(expected)) << source;
    }
  }

  Registry registry_;
};

// ---- Expressions

TEST_F(ScriptTest, LiteralsPrintAsTheyRead) {
  expectOutput({
      {"Print 42, &hFF, &b101, &o17, &hFFFFFFFF", "42 255 5 15 -1"},
      {"Print 0.1 + 0.2, .5, 1e3, 2.0, 1/3", "0.3 0.5 1000 2 0.333333333333333"},
      {R"(Print "say ""hi""", "" & "'no comment")", "say \"hi\" 'no comment"},
      {"Print TRUE, false, nil, &cff8000", "True False Nil &cFF8000"},
      {"Print", ""},
  });
}

TEST_F(ScriptTest, AmpersandJoinsOrStartsALiteral) {
  expectOutput({
      {"Dim b1, a As String = \"x\"\nPrint a&b1, a & b1", "xx xx"},
      {"Dim hue As String = \"h\"\nPrint \"a\"&hue, \"a\"&Chr(66), 1 & True", "ah aB 1True"},
  });
}

TEST_F(ScriptTest, Precedence) {
  expectOutput({
      {"Print 1 + 2 * 3, (1 + 2) * 3, 10 - 2 - 3, 100 / 10 / 5", "7 9 5 2"},
      {"Print -2 ^ 2, 2 ^ -1, 2 ^ 3 ^ 2, 7 Mod 4 * 2, -7 \\ 2", "-4 0.5 64 6 -3"},
      {"Print Not True And False, True Or False And False, 1 + 1 = 2", "False True True"},
      {"Dim b As Box\nPrint Not b Is Nil, \"a\" & 1 + 2", "False a3"},
  });
}

TEST_F(ScriptTest, IntegersWrapAndDivisionsAreDefined) {
  expectOutput({
      {"Print 2147483647 + 1, -2147483647 - 2, 65536 * 65536", "-2147483648 2147483647 0"},
      {"Dim i As Integer = &h80000000\nPrint -i, Abs(i), i \\ -1, i Mod -1",
       "-2147483648 -2147483648 -2147483648 0"},
      {"Print 7 / 2, 7 \\ 2, -7 Mod 3, 7.9 \\ 2.9, 1 / 0, -1 / 0", "3.5 3 -1 3 inf -inf"},
      {"Try\nPrint 1 Mod 0\nCatch e As DivisionByZeroException\nPrint \"zero\"\nEnd Try", "zero"},
  });
}

TEST_F(ScriptTest, ComparisonsAndLogic) {
  expectOutput({
      {R"(Print 1 < 1.5, "b" > "a", "a" = "A", &c010203 = RGB(1, 2, 3), True <> False)",
       "True True False True True"},
      {"Print 6 And 3, 6 Or 3, 6 Xor 3, Not 0, True Xor True", "2 7 5 -1 False"},
      {"Dim b As Box\nPrint b <> Nil And b.Width > 3, b = Nil Or b.Width > 3", "False True"},
      {"Dim b As New Box\nDim c As Box = b\nPrint b Is c, b Is New Box, b = c", "True False True"},
  });
}

TEST_F(ScriptTest, ConversionsBetweenTypes) {
  expectOutput({
      {"Dim i As Integer = 2.9\nDim d As Double = 3\nPrint i, -2.9 \\ 1, d / 2", "2 -2 1.5"},
      {"Dim i, j As Integer = 1e20\nj = -1e20\nPrint i, j", "2147483647 -2147483648"},
      {"Dim i As Integer = Sqrt(-1)\nDim s As String = Nil\nPrint i, s & \"|\"", "0 |"},
      {"Dim c As Color = &h01FF8000\nPrint c, c.Red, c.green, c.BLUE", "&cFF8000 255 128 0"},
  });
  expectErrors({
      {"Dim i As Integer = \"1\"", "1:20: 'i' must be Integer, but this is String"},
      {"Dim b As Boolean = 1", "1:20: 'b' must be Boolean, but this is Integer"},
      {"Dim s As String\ns = 1", "2:1: 's' must be String, but this is Integer"},
      {"Dim i As Integer = Nil", "1:20: 'i' must be Integer, but this is Nil"},
      {"Print 1 + \"a\"", "1:9: '+' does not take Integer and String"},
      {"Print 1 Is Nil", "1:9: 'Is' does not take Integer and Nil"},
      {"Print -\"a\"", "1:7: '-' does not take String"},
      {"If 1 Then Print 2", "1:4: a condition must be Boolean, but this is Integer"},
      {"Dim e As RuntimeException = New Box",
       "1:33: 'e' must be RuntimeException, but this is Box"},
  });
}

TEST_F(ScriptTest, BuiltInFunctions) {
  expectOutput({
      {"Print RGB(300, -1, 16), Min(1, 2), Max(1, 2.5), Abs(-3), Abs(-2.5)",
       "&cFF0010 1 2.5 3 2.5"},
      {"Print Floor(-1.5), Ceil(1.2), Round(2.5), Sqrt(9), Pow(2, 3), Exp(0), Log(1)",
       "-2 2 3 3 8 1 0"},
      {"Print Sin(0), Cos(0), Atan2(0, 1), Rnd < 1, Microseconds > 0", "0 1 0 True True"},
      {R"(Print Mid("hello", 2, 3), Mid("hello", 4), Mid("hello", 9) + Mid("a", 1, -1))",
       "ell lo "},
      {"Print Left(\"abc\", 2), Right(\"abc\", 2), Right(\"abc\", 9) + Left(\"abc\", -1), "
       "Len(\"ab\")",
       "ab bc abc 2"},
      {R"(Print InStr("hello", "l"), InStr(4, "hello", "l"), InStr(9, "a", "a"))", "3 4 0"},
      {R"(Print Uppercase("aZ1"), Lowercase("aZ1"), Asc(Chr(255)), Asc(""))", "AZ1 az1 255 0"},
      {R"(Print Val(" -2.5x"), Val("inf"), Val(""), CDbl("1e2"), CDbl(3), Str(1.5) + CStr(2))",
       "-2.5 0 0 100 3 1.52"},
      {"Print ArgumentCount, Argument(0), Argument(1)", "2 first second"},
      {"Try\nPrint Argument(2)\nCatch e As OutOfBoundsException\nPrint e.Message\nEnd Try",
       "there is no argument 2 among 2"},
  });
}

// ---- Members

TEST_F(ScriptTest, CallsAndAssignments) {
  expectOutput({
      {"Dim b As New Box(3)\nb.WIDTH = b.Width * 2.5\nPrint b.width, b.Me2.Me2().Width", "7 7"},
      {"Dim b As Box = Box.Open\nPrint b.Width, Box.Open(4).Width, New Box(5).Width", "7 4 5"},
      {"Dim b As New Box\nb.Cell(1, 2) = 3\nPrint b.Cell(0, 0)", "6"},
      {"Dim b As New Box\nb.Grow 1\nb.Grow(2)\nb.Grow 3, 1\nCall b.Grow -1, 1\nPrint b.Width", "9"},
      {"Dim b As New Box\nb.Inner = New Box(5)\nPrint b.Content.Width\nb.Inner = Nil", "5"},
      {"Dim s As String\nPrint s & Length(Nil)", "text"},
  });
}

TEST_F(ScriptTest, OverloadsFitTheArguments) {
  expectOutput({
      {"Print Kind(1), Kind(1.5), Kind(\"\"), Kind(&c000000), Kind(New Box)",
       "integer double string color box"},
      {"Print Kind(1, 2), Kind(1, 2.5), Kind(1.5, 2)", "integer+ doubles doubles"},
  });
  expectErrors({
      {"Print Kind(True)",
       "1:7: Kind does not take (Boolean); use Kind(x as double) as string or "
       "Kind(x as integer) as string or Kind(x as string) as string or Kind(x as box) as string or "
       "Kind(x as color) as string or Kind(x as integer, y as integer = 1) as string or "
       "Kind(x as double, y as double) as string"},
      {"Dim b As New Box\nb.Cell(1) = 2",
       "2:3: Cell does not take (Integer); use Cell(x as integer, y as double) as double"},
      {"Dim b As New Box(\"x\")",
       "1:14: Constructor does not take (String); use Constructor or Constructor(width as "
       "integer)"},
  });
}

TEST_F(ScriptTest, ByRefWritesBack) {
  expectOutput({
      {"Dim b As Box\nDim n As Integer = 1\nFetch b, n\nPrint n, b.Width", "42 1"},
      {"Dim b As Box\nDim d As Double = 1.5\nFetch(b, d)\nPrint d", "42"},
  });
  expectErrors({
      {"Dim b As Box\nFetch b, 1 + 1", "2:12: a ByRef argument must be a variable"},
      {"Fetch New Box, 1", "1:11: a ByRef argument must be a variable"},
      {"Dim i As Integer\nSpoil i", "2:7: 'i' must be Integer, but this is String"},
  });
}

TEST_F(ScriptTest, MistakenNames) {
  expectErrors({
      {"Dim b As New Box\nPrint b.Widht", "2:9: Box has no member 'Widht'; did you mean 'Width'?"},
      {"Dim b As New Box\nb.Xylophone = 1", "2:3: Box has no member 'Xylophone'"},
      {"Print Box.Opne", "1:11: Box has no member 'Opne'; did you mean 'Open'?"},
      {"Print &c000000.Gren", "1:16: Color has no member 'Gren'; did you mean 'Green'?"},
      {"Print 1.Width", "1:9: expected end of line but found 'Width'"},
      {"Print (1).Width", "1:11: Integer has no member 'Width'"},
      {"Dim total As Integer\nPrint totl", "2:7: unknown name 'totl'; did you mean 'total'?"},
      {"x = 1", "1:1: unknown name 'x'; variables are declared with Dim"},
      {"Print Lenght(\"a\")", "1:7: unknown name 'Lenght'; did you mean 'Length'?"},
      {"Dim x As Bax", "1:10: unknown class 'Bax'; did you mean 'Box'?"},
      {"Dim x As Intger", "1:10: unknown class 'Intger'; did you mean 'Integer'?"},
      {"Dim x As New Boxx", "1:14: unknown class 'Boxx'; did you mean 'Box'?"},
      {"Print Box", "1:7: 'Box' is a class; expected '.' and a shared member after it"},
      {"Dim x, X As Integer", "1:8: 'X' is already declared"},
      {"Dim x As Integer\nx", "2:1: 'x' is a variable; expected '=' and a value"},
      {"Dim x As Integer\nPrint x(1)", "2:7: 'x' is no array and no function"},
  });
}

TEST_F(ScriptTest, MisusedMembers) {
  expectErrors({
      {"Dim b As New Box\nPrint b.Grow(1)", "2:9: 'Grow' has no result"},
      {"Dim b As New Box\nPrint b.Inner", "2:9: 'Inner' can't be read"},
      {"Dim b As New Box\nb.Content = Nil", "2:3: 'Content' can't be assigned"},
      {"Dim b As New Box\nb.Width = \"1\"", "2:3: 'Width' must be Integer, but this is String"},
      {"Rnd = 1", "1:1: 'Rnd' is a function and can't be assigned"},
      {"Dim b As New Box\nb.Break", "2:3: disk full"},
  });
}

// ---- Statements

TEST_F(ScriptTest, Branches) {
  expectOutput({
      {"Sub Show(i As Integer)\nIf i = 1 Then\nPrint 1\nElseIf i = 2 Then\nPrint 2\nElse\n"
       "Print 3\nEnd If\nEnd Sub\nShow 1\nShow 2\nShow 3",
       "1\n2\n3"},
      {"If 1 > 2 Then Print 1 Else Print 2", "2"},
      {"If True Then If False Then Print 1 Else Print 2", "2"},
  });
}

TEST_F(ScriptTest, Loops) {
  const std::string start = "Dim s As String\nDim i As Integer\n";
  const struct {
    const char* loop;
    const char* expected;
  } cases[] = {
      {"For i = 1 To 3\ns = s & i\nNext i", "123 4"},
      {"For i = 3 DownTo 1\ns = s & i\nNext", "321 0"},
      {"For i = 1 To 7 Step 3\ns = s & i\nNext", "147 10"},
      {"For i = 9 DownTo 1 Step 4\ns = s & i\nNext", "951 -3"},
      {"For i = 3 To 1 Step -1\ns = s & i\nNext", "321 0"},
      {"For i = 1 To 0\ns = s & i\nNext", " 1"},
      {"For i = 2147483646 To 2147483647\ns = s & \".\"\nNext", ".. 2147483647"},
      {"For d As Double = 0 To 1 Step 0.5\ns = s & d & \";\"\nNext", "0;0.5;1; 0"},
      {"While i < 3\ni = i + 1\nIf i = 2 Then Continue\ns = s & i\nWend", "13 3"},
      {"Do\ni = i + 1\nLoop Until i = 4", " 4"},
      {"Do Until i = 4\ni = i + 1\nIf i = 2 Then Exit Do\nLoop", " 2"},
      {"For i = 1 To 9\nWhile True\nIf i = 3 Then Exit For\nExit\nWend\ns = s & i\nNext", "12 3"},
      {"For i = 1 To 3\nDo\nIf i = 2 Then Continue For\nExit Do\nLoop\ns = s & i\nNext", "13 4"},
  };
  for (const auto& [loop, expected] : cases) {
    const std::string source = start + loop + "\nPrint s, i";
    EXPECT_EQ(outcome(source), std::string(expected) + "\n") << source;
  }
}

TEST_F(ScriptTest, Exceptions) {
  expectOutput({
      {"Dim b As Box\nTry\nPrint b.Width\nCatch e As NilObjectException\nPrint e.message\nEnd Try",
       "'.Width' was used on Nil"},
      {"Dim b As New Box\nTry\nb.Fail \"why\"\nCatch x As OutOfBoundsException\nPrint 1\n"
       "Catch x As RuntimeException\nPrint 2, x.Message\nFinally\nPrint 3\nEnd Try",
       "2 why\n3"},
      {"Dim b As New Box\nTry\nTry\nb.Fail \"in\"\nFinally\nPrint 1\nEnd Try\nCatch\nPrint 2\nEnd "
       "Try",
       "1\n2"},
      {"Dim b As New Box\nTry\nTry\nb.Fail \"a\"\nCatch\nb.Fail \"b\"\nEnd Try\nCatch e\n"
       "Print e.Message\nEnd Try",
       "b"},
      {"While True\nTry\nExit\nFinally\nPrint 1\nEnd Try\nWend", "1"},
  });
  expectErrors({
      {"Dim b As New Box\nb.Fail \"The channel picture is nil.\"",
       "2:3: uncaught UnsupportedFormatException: The channel picture is nil."},
      {"Dim b As New Box\nTry\nb.Fail \"\"\nCatch e As NilObjectException\nFinally\nb.Grow 1\nEnd "
       "Try",
       "3:3: uncaught UnsupportedFormatException"},
      {"Try\nFinally\nPrint Chr(256)\nEnd Try",
       "3:7: uncaught OutOfBoundsException: Chr takes 0 to 255"},
      {"Try\nCatch e As Box2\nEnd Try\nTry\nPrint 1 \\ 0\nCatch e As Box2\nEnd Try",
       "6:12: unknown class 'Box2'; did you mean 'Box'?"},
  });
}

TEST_F(ScriptTest, ReturnAndQuitEndTheScript) {
  expectOutput({
      {"Print 1\nReturn\nPrint 2", "1"},
      {"Sub Stop()\nWhile True\nQuit\nWend\nEnd Sub\nPrint 1\nStop\nPrint 2", "1"},
  });
}

TEST_F(ScriptTest, Arrays) {
  expectOutput({
      {"Dim a(2), n As Integer\na(2) = 5.5\nn = 1\na(n) = a(2) + 1\nPrint a(0), a(1), a(2)",
       "0 6 5"},
      {"Dim a(1) As Box\nTry\na(2) = Nil\nCatch e As OutOfBoundsException\nPrint e.Message\nEnd "
       "Try",
       "index 2 is outside a"},
      {"Try\nDim a(-2) As Integer\nCatch e As OutOfBoundsException\nPrint 1\nEnd Try", "1"},
  });
  expectErrors(
      {{"Dim a(1) As Integer\nPrint a", "2:7: the array 'a' needs one index in parentheses"}});
}

TEST_F(ScriptTest, UserFunctions) {
  expectOutput({
      {"Print Fact(5)\nFunction Fact(n As Integer) As Double\n"
       "If n < 2 Then Return 1 Else Return n * Fact(n - 1)\nEnd Function",
       "120"},
      {"Sub Swap(ByRef a As Integer, ByRef b As Integer)\nDim t As Integer = a\na = b\nb = t\n"
       "End Sub\nDim x As Integer = 1, y As Integer = 2\nSwap x, y\nPrint x, y",
       "2 1"},
      {"Function Sum(a As Integer, _ ' first\n    b As Integer = 2) As Integer\nReturn a + b\n"
       "End Function\nPrint Sum(1)",
       "3"},
      {"Function Nothing() As Box\nReturn\nEnd Function\nPrint Nothing Is Nil", "True"},
  });
  expectErrors({
      {"Dim x As Integer\nShow\nSub Show()\nPrint x\nEnd Sub",
       "4:7: unknown name 'x'; variables are declared with Dim"},
      {"Function F() As Integer\nReturn \"\"\nEnd Function\nPrint F",
       "2:8: the result must be Integer, but this is String"},
      {"Function F()\nEnd Function", "1:10: a Function needs 'As' and the type of its result"},
      {"Sub F(x)\nEnd Sub", "1:5: expected 'As' at column 4 of \"F(x)\""},
  });
}

// ---- Text

TEST_F(ScriptTest, CommentsContinuationsAndLineEnds) {
  expectOutput({
      {"Print 1 + _\n  2 ' three\n// nothing\nRem nothing\n'", "3"},
      {"Print 1 _ ' goes on\r\n , 2\r\rPrint 3", "1 2\n3"},
  });
  expectErrors({
      {"Print 1 _ 2", "1:11: expected end of line after '_'"},
      {"\r\n\r\nNext", "3:1: 'Next' without a beginning"},
      {"\r\rNext", "3:1: 'Next' without a beginning"},
  });
}

TEST_F(ScriptTest, SyntaxErrorsSayWhatWasExpected) {
  expectErrors({
      {"If True\nPrint 1", "1:8: expected 'Then' but found end of line"},
      {"If True Then\nPrint 1", "2:8: expected 'End If' but found end of file"},
      {"While True\nEnd If", "2:1: expected 'Wend' but found 'End'"},
      {"For i = 1 To 2\nNext j", "2:6: expected 'i' but found 'j'"},
      {"For i = 1\nNext", "1:10: expected 'To' or 'DownTo' but found end of line"},
      {"Try\nEnd Try", "2:1: expected 'Catch' or 'Finally' but found 'End'"},
      {"Dim a Integer", "1:7: expected 'As' but found 'Integer'"},
      {"Dim If As Integer", "1:5: expected a variable name but found 'If'"},
      {"Print 1 +", "1:10: expected an expression but found end of file"},
      {"Print Max(1, 2", "1:15: expected ',' or ')' but found end of file"},
      {"Print 1 2", "1:9: expected end of line but found '2'"},
      {"Print \"abc", "1:7: expected '\"' at the end of the string"},
      {"Print &hFFFFFFFFF", "1:7: expected a 32-bit hexadecimal number after '&h'"},
      {"Print ?", "1:7: unexpected character"},
      {"Exit", "1:1: 'Exit' outside a loop"},
      {"While True\nExit For\nWend", "2:6: no For loop is around this"},
      {"For i As Integer = 1 To 2 Step 0\nNext", "1:32: a step of 0 would never end"},
  });
}

TEST_F(ScriptTest, ErrorsShowTheLineWithACaret) {
  EXPECT_EQ(outcome("Print 1\n\tPrint \"\xC3\xA4\", x\nPrint 2"),
            "1\ndemo.rbs:2:13: unknown name 'x'; variables are declared with Dim\n\tPrint "
            "\"\xC3\xA4\", x\n\t           ^");
  EXPECT_EQ(outcome("Print \x1B\x01"), "demo.rbs:1:7: unexpected character\nPrint ??\n      ^");
}

// ---- Interpreter

TEST_F(ScriptTest, EvaluatesOneExpression) {
  std::ostringstream output;
  Interpreter interpreter(registry_, output);
  interpreter.setVariable("self", objectValue(makeObject<Box>()));
  EXPECT_EQ(std::get<int32_t>(interpreter.evaluate("Self.Width + 1", "expression")), 2);
  EXPECT_TRUE(isNil(interpreter.evaluate("self.Grow(2)", "expression")));
  // Statements may come before, on lines of their own.
  for (const char* text :
       {"\nDim n As Integer = 3\nn = n * 2\n\n\nn + 1 ' more\n",
        "Function F(n As Integer) As Integer; Return 2 * n; End Function; F(3) + 1;",
        "Dim n As Integer; Do; n = n + 1; If n = 7 Then Exit; Loop; n"}) {
    EXPECT_EQ(std::get<int32_t>(interpreter.evaluate(text, "expression")), 7) << text;
  }
  EXPECT_TRUE(isNil(interpreter.evaluate("Quit; 1", "expression")));
  interpreter.setVariable("SELF", Value{Nil{}});
  for (const auto& [expression, message] : {
           Case{"self.Width", "6: uncaught NilObjectException: '.Width' was used on Nil"},
           Case{"1 = 1 =", "8: expected an expression but found end of file"},
           Case{"1 1", "3: expected the end of the expression but found '1'"},
           Case{"; ;", "4: expected an expression but found end of file"},
           Case{"Do; Loop", "9: expected an expression but found end of file"},
           Case{"Dim n As Integer", "1: expected an expression but found 'Dim'"},
           Case{"Dim n As Integer; n.x", "21: Integer has no member 'x'"},
       }) {
    try {
      interpreter.evaluate(expression, "expression");
      ADD_FAILURE() << expression;
    } catch (const ScriptError& error) {
      const std::string start = std::string("expression:1:") + message + "\n" + expression + "\n";
      EXPECT_EQ(std::string(error.what()).find(start), 0U) << error.what();
    }
  }
}

TEST_F(ScriptTest, VariablesOfAFailedRunAreReleased) {
  std::ostringstream output;
  Interpreter interpreter(registry_, output);
  const Script script =
      Script::parse("Dim b As New Box\nb.Inner = New Box\nb.Fail \"\"", "demo.rbs");
  for (int run = 0; run < 2; ++run) {
    EXPECT_THROW(interpreter.run(script), ScriptError);
    EXPECT_TRUE(Object::living().empty());
  }
}

// ---- Helpers

TEST(Suggestion, CountsSlips) {
  EXPECT_EQ(editDistance("InvertQZR", "invertqrz"), 1u);
  EXPECT_EQ(editDistance("", "abc"), 3u);
  EXPECT_EQ(editDistance("kitten", "sitting"), 3u);
  EXPECT_EQ(suggestion("Widht", {"Height", "Width"}), "; did you mean 'Width'?");
  EXPECT_EQ(suggestion("Zebra", {"Height", "Width"}), "");
}

}  // namespace
}  // namespace host
