#include "host/core/declaration.h"

#include <gtest/gtest.h>

#include <string>

namespace host {
namespace {

TEST(SameName, IgnoresCaseOfLettersOnly) {
  EXPECT_TRUE(sameName("InvertQRZ", "invertqrz"));
  EXPECT_TRUE(sameName("", ""));
  EXPECT_FALSE(sameName("Invert", "InvertQ"));
  EXPECT_FALSE(sameName("a[", "a{"));  // 0x20 apart, as letters of either case are
}

TEST(Types, NamesAndInitialValues) {
  EXPECT_EQ(typeNamed("integer").kind, Type::Kind::Integer);
  EXPECT_EQ(typeNamed("COLOR").name(), "Color");
  EXPECT_EQ(typeNamed("memoryBlock").name(), "memoryBlock");
  EXPECT_EQ(std::get<double>(typeNamed("double").initialValue()), 0.0);
  EXPECT_EQ(std::get<bool>(typeNamed("boolean").initialValue()), false);
  EXPECT_EQ(std::get<std::string>(typeNamed("string").initialValue()), "");
  EXPECT_EQ(std::get<Nil>(typeNamed("picture").initialValue()), Nil{});
}

TEST(ParseDeclaration, Names) {
  const Declaration plain = parseDeclaration("Close");
  EXPECT_EQ(plain.name, "Close");
  EXPECT_TRUE(plain.parameters.empty());
  EXPECT_FALSE(plain.result);
  EXPECT_TRUE(parseDeclaration("Close( )").parameters.empty());
  EXPECT_EQ(parseDeclaration("F(byrefX as integer)").parameters[0].name, "byrefX");
  EXPECT_EQ(parseDeclaration("Fas as integer").name, "Fas");
}

TEST(ParseDeclaration, ParametersAndResult) {
  const std::string text = "Find(pic as picture,byref x as integer , ByVal y As Double)as boolean";
  const Declaration declaration = parseDeclaration(text);
  EXPECT_EQ(declaration.text, text);
  ASSERT_EQ(declaration.parameters.size(), 3u);
  EXPECT_EQ(declaration.parameters[0].type.className, "picture");
  EXPECT_FALSE(declaration.parameters[0].byRef);
  EXPECT_EQ(declaration.parameters[1].name, "x");
  EXPECT_TRUE(declaration.parameters[1].byRef);
  EXPECT_FALSE(declaration.parameters[2].byRef);
  ASSERT_TRUE(declaration.result);
  EXPECT_EQ(declaration.result->kind, Type::Kind::Boolean);
}

TEST(ParseDeclaration, DefaultValues) {
  const Declaration declaration = parseDeclaration(
      "F(i as integer=-10000, d as double = 2, e as double = -.5, c as color=&c88B5C4, "
      "h as integer = &hFF, s as string = \"a\"\"b\", t as boolean = TRUE, p as picture = nil)");
  ASSERT_EQ(declaration.parameters.size(), 8u);
  const auto value = [&](size_t index) {
    return declaration.parameters[index].defaultValue.value();
  };
  EXPECT_EQ(std::get<int32_t>(value(0)), -10000);
  EXPECT_EQ(std::get<double>(value(1)), 2.0);
  EXPECT_EQ(std::get<double>(value(2)), -0.5);
  EXPECT_EQ(std::get<Color>(value(3)), Color{0x88B5C4});
  EXPECT_EQ(std::get<int32_t>(value(4)), 255);
  EXPECT_EQ(std::get<std::string>(value(5)), "a\"b");
  EXPECT_EQ(std::get<bool>(value(6)), true);
  EXPECT_EQ(std::get<Nil>(value(7)), Nil{});
}

TEST(ParseDeclaration, SaysWhatWasExpectedAndWhere) {
  const struct {
    const char* text;
    const char* expected;
  } cases[] = {
      {"", "expected a name at column 1"},
      {"9Lives", "expected a name at column 1"},
      {"F(", "expected a parameter name at column 3"},
      {"F(x)", "expected 'As' at column 4"},
      {"F(x as)", "expected a type at column 7"},
      {"F(x as integer", "expected ')' at column 15"},
      {"F(x as integer,)", "expected a parameter name at column 16"},
      {"F(x as integer) as", "expected a type at column 19"},
      {"F as integer x", "expected the end at column 14"},
      {"F(c as color = &cFFF)", "expected six hexadecimal digits after '&c' at column 16"},
      {"F(c as color = &", "expected '&c' or '&h' at column 16"},
      {"F(x as integer = 1.5)", "expected a default value of type Integer at column 18"},
      {"F(x as double = -inf)", "expected a number at column 17"},
      {"F(x as integer = y)", "expected a default value at column 18"},
      {"F(s as string = \"a)", "expected a string that ends with '\"'"},
      {"F(x as integer = 1, y as integer)", "expected a default value, because"},
  };
  for (const auto& [text, expected] : cases) {
    try {
      parseDeclaration(text);
      ADD_FAILURE() << text << " was taken";
    } catch (const DeclarationError& error) {
      EXPECT_EQ(std::string(error.what()).find(expected), 0u) << error.what();
    }
  }
}

}  // namespace
}  // namespace host
