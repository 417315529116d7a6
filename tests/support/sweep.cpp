#include "tests/support/sweep.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iostream>

#include "tests/support/store_bytes.h"

namespace host {

bool runApart(const std::string& what, const Representation& representation, uint32_t seconds,
              const std::function<void()>& work) {
  std::cout << std::flush;
  const pid_t child = fork();
  if (child == 0) {
    alarm(seconds);
    runtime().settings.newPictures = representation.newPictures;
    const testing::ScopedTrace trace(__FILE__, __LINE__, what);
    work();
    std::cout << std::flush;
    std::quick_exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_FALSE(WIFSIGNALED(status)) << what << ": " << strsignal(WTERMSIG(status));
  EXPECT_EQ(status, 0) << what;
  return status == 0;
}

Ref<Picture> pictureWithRowEnds(const Representation& representation, PictureSize size,
                                const std::vector<uint32_t>& words) {
  auto picture =
      Picture::create(representation.sources, size.width, size.height, representation.depth);
  picture->setPixels(words);
  markRowEnds(*picture);
  return picture;
}

void expectRowEnds() {
  for (const Object* object : Object::living()) {
    auto* picture = dynamic_cast<Picture*>(const_cast<Object*>(object));
    EXPECT_TRUE(picture == nullptr || rowEndsAreIntact(*picture)) << object->describe();
  }
}

Ref<Object> newInstance(std::string_view className) {
  const Class* found = runtime().registry.findClass(className);
  const Value made = found->constructors.front().call(nullptr, {});
  return Ref<Object>::share(objectOf(made));
}

std::vector<std::vector<uint8_t>> bytesOfBlocks() {
  std::vector<std::vector<uint8_t>> blocks;
  for (const Object* object : Object::living()) {
    if (const auto* block = dynamic_cast<const MemoryBlock*>(object))
      blocks.push_back(block->bytes);
  }
  return blocks;
}

SamePort::~SamePort() {
  CGrafPtr port = nullptr;
  GDHandle device = nullptr;
  GetGWorld(&port, &device);
  EXPECT_TRUE(port == port_ && device == device_) << "another port is current";
}

Outcome::Outcome(std::string_view kind, std::string_view bytes)
    : body(std::hash<std::string_view>()(bytes)) {
  kind.copy(head, sizeof head - 1);
}

void Outcome::add(const Outcome& more) {
  const std::string both = std::string(head) + ", " + more.head;
  both.copy(head, sizeof head - 1);
  body = body * 31 + more.body;
}

std::string_view bytesOf(const std::vector<uint32_t>& words) {
  return {reinterpret_cast<const char*>(words.data()), 4 * words.size()};
}

namespace {

bool holdsNothing(const MemoryBlock& block) {
  return std::ranges::all_of(block.bytes, [](uint8_t byte) { return byte == 0; });
}

}  // namespace

Outcome outcomeOf(const Value& value) {
  if (const auto* picture = objectAs<Picture>(value)) {
    return Outcome(
        "picture " + std::to_string(picture->width()) + "x" + std::to_string(picture->height()),
        bytesOf(picture->pixels()));
  }
  if (const auto* block = objectAs<MemoryBlock>(value); block != nullptr && !holdsNothing(*block)) {
    return Outcome("block",
                   {reinterpret_cast<const char*>(block->bytes.data()), block->bytes.size()});
  }
  if (const auto* text = std::get_if<std::string>(&value)) return Outcome("string", *text);
  if (const auto* number = std::get_if<int32_t>(&value)) return Outcome(std::to_string(*number));
  if (const auto* number = std::get_if<double>(&value)) return Outcome(std::to_string(*number));
  if (const auto* boolean = std::get_if<bool>(&value)) return Outcome(*boolean ? "true" : "false");
  return Outcome("nil");
}

}  // namespace host
