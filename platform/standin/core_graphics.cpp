// Core Graphics: bitmap contexts.

#include <new>

#include "platform/standin/state.h"

struct CGContext {
  void* data;
  size_t bytesPerRow;
  size_t bitsPerComponent;
  size_t bitsPerPixel;
};

namespace standin {

CGContextRef newBitmapContext(void* data, size_t bytesPerRow, size_t bitsPerComponent,
                              size_t bitsPerPixel) {
  auto* context = new (std::nothrow) CGContext{data, bytesPerRow, bitsPerComponent, bitsPerPixel};
  if (context != nullptr) ++held.contexts;
  return context;
}

void disposeBitmapContext(CGContextRef context) {
  if (context == nullptr) return;
  --held.contexts;
  delete context;
}

}  // namespace standin

using standin::called;

void* CGBitmapContextGetData(CGContextRef context) {
  return called("CGBitmapContextGetData") && context != nullptr ? context->data : nullptr;
}

size_t CGBitmapContextGetBytesPerRow(CGContextRef context) {
  return called("CGBitmapContextGetBytesPerRow") && context != nullptr ? context->bytesPerRow : 0;
}

size_t CGBitmapContextGetBitsPerComponent(CGContextRef context) {
  return called("CGBitmapContextGetBitsPerComponent") && context != nullptr
             ? context->bitsPerComponent
             : 0;
}

size_t CGBitmapContextGetBitsPerPixel(CGContextRef context) {
  return called("CGBitmapContextGetBitsPerPixel") && context != nullptr ? context->bitsPerPixel : 0;
}
