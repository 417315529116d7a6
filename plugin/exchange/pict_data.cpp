#include "plugin/exchange/pict_data.h"

namespace qrz {
namespace {

// QuickDraw's classic colours.
constexpr long kClassicBlack = 33;
constexpr long kClassicWhite = 30;
constexpr int32_t k72PixelsPerInch = 0x00480000;
constexpr int16_t kExtendedVersion = -2;

}  // namespace

PicHandle recordPicture(HostPicture picture, int32_t width, int32_t height) {
  if (width < 0 || width > INT16_MAX || height < 0 || height > INT16_MAX) return nullptr;
  const Rect bounds = {0, 0, static_cast<int16_t>(height), static_cast<int16_t>(width)};
  const OpenCPicParams parameters = {
      bounds, k72PixelsPerInch, k72PixelsPerInch, kExtendedVersion, 0, 0};
  ForeColor(kClassicBlack);
  BackColor(kClassicWhite);
  PicHandle data = OpenCPicture(&parameters);
  if (data == nullptr) return nullptr;
  service::drawPicturePrimitive(picture, &bounds, 0);
  ClosePicture();
  return data;
}

HostPicture pictureOwning(PicHandle data) {
  if (data == nullptr) return nullptr;
  HostPicture picture = service::REALBuildPictureFromPicHandle(data, 1);
  if (picture == nullptr) KillPicture(data);
  return picture;
}

}  // namespace qrz
