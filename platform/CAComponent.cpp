// SPDX-License-Identifier: Apache-2.0
#include "CAComponent.h"

#include <array>
#include <cstring>
#include <memory>
#include <string_view>

#include "FourCharCode.h"

namespace {

struct S_Release {
  using pointer = CFStringRef;
  void operator()(CFStringRef text) const noexcept { CFRelease(text); }
};
using C_OwnedString = std::unique_ptr<CFStringRef, S_Release>;

C_OwnedString CopyName(AudioComponent component) {
  CFStringRef name = nullptr;
  if (component == nullptr || AudioComponentCopyName(component, &name) != noErr) return nullptr;
  return C_OwnedString(name);
}

std::string Utf8(CFStringRef text) {
  const CFIndex cbText =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(text), kCFStringEncodingUTF8);
  if (cbText < 0) return {};
  std::string strText(static_cast<std::size_t>(cbText) + 1, '\0');
  if (!CFStringGetCString(text, strText.data(), cbText + 1, kCFStringEncodingUTF8)) return {};
  strText.resize(std::strlen(strText.c_str()));
  return strText;
}

S_ComponentNames Split(const std::string& strName) {
  constexpr std::string_view kSeparator = ": ";
  const std::size_t nAt = strName.find(kSeparator);
  if (nAt == std::string::npos) return {{}, strName};
  return {strName.substr(0, nAt), strName.substr(nAt + kSeparator.size())};
}

}  // namespace

CAComponent::CAComponent(AudioComponent component) noexcept : m_component(component) {
  if (component == nullptr) return;
  AudioComponentDescription desc{};
  if (AudioComponentGetDescription(component, &desc) == noErr) m_desc = desc;
}

S_ComponentNames CAComponent::Names() const {
  const C_OwnedString name = CopyName(m_component);
  return name != nullptr ? Split(Utf8(name.get())) : S_ComponentNames{};
}

void CAComponent::Print(std::FILE* pStream) const {
  std::fprintf(pStream, "CAComponent: %p", static_cast<const void*>(m_component));
  const S_ComponentNames names = Names();
  if (!names.strManufacturer.empty()) {
    std::fprintf(pStream, ", Manu:%s", names.strManufacturer.c_str());
  }
  if (!names.strUnit.empty()) std::fprintf(pStream, ", Name:%s", names.strUnit.c_str());
  std::fprintf(pStream, ", ");
  PrintComponentDescription(m_desc, pStream);
}

void PrintComponentDescription(const AudioComponentDescription& desc, std::FILE* pStream) {
  std::array<char, kFourCharCodeRoom> code{};
  std::fprintf(pStream, "AudioComponentDescription: %s - ",
               FourCharCodeText(desc.componentType, code.data()));
  std::fprintf(pStream, "%s - ", FourCharCodeText(desc.componentSubType, code.data()));
  std::fprintf(pStream, "%s", FourCharCodeText(desc.componentManufacturer, code.data()));
  std::fprintf(pStream, ", 0x%X, 0x%X\n", desc.componentFlags, desc.componentFlagsMask);
}
