// SPDX-License-Identifier: Apache-2.0
//
// The texts of components and units, on a toolbox that can give its component any name.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "CAAudioUnit.h"
#include "CAComponent.h"
#include "FakeToolbox.h"
#include "Printed.h"

namespace {

constexpr AudioComponentDescription kDescription = {0x61756678, 0x66616B65, 0x6D616E75, 0xE, 0xF};
const char* const kDescriptionText =
    ", AudioComponentDescription: 'aufx' - 'fake' - 'manu', 0xE, 0xF\n";

class ComponentText : public ::testing::Test {
 protected:
  ComponentText() {
    m_toolbox.Reset();
    m_toolbox.componentDescription = kDescription;
  }
  // The text between the address and the description.
  std::string PrintedNames() {
    const CAComponent component(kDescription);
    const std::string strText = Printed([&](std::FILE* p) { component.Print(p); });
    const std::string strHead = "CAComponent: " + Address(component.Comp());
    EXPECT_TRUE(strText.starts_with(strHead)) << strText;
    EXPECT_TRUE(strText.ends_with(kDescriptionText)) << strText;
    const std::size_t cbNames =
        strText.size() - strHead.size() - std::string(kDescriptionText).size();
    return strText.substr(strHead.size(), cbNames);
  }
  std::string PrintedNames(const std::string& strName) {
    m_toolbox.strComponentName = strName;
    return PrintedNames();
  }

  C_FakeToolbox& m_toolbox = C_FakeToolbox::Get();
};

TEST_F(ComponentText, ManufacturerAndUnit_ArePrintedOnTheirOwn) {
  EXPECT_EQ(PrintedNames("Acme: Echo"), ", Manu:Acme, Name:Echo");
  EXPECT_EQ(PrintedNames("Echo"), ", Name:Echo");
  EXPECT_EQ(PrintedNames("Acme: "), ", Manu:Acme");
  EXPECT_EQ(PrintedNames(": Echo"), ", Name:Echo");
  EXPECT_EQ(PrintedNames(": "), "");
  EXPECT_EQ(PrintedNames(""), "");
}

TEST_F(ComponentText, TheFirstColonWithABlank_EndsTheManufacturer) {
  EXPECT_EQ(PrintedNames("Acme: Echo: Long"), ", Manu:Acme, Name:Echo: Long");
  EXPECT_EQ(PrintedNames("Acme:Echo"), ", Name:Acme:Echo");
  EXPECT_EQ(PrintedNames("A:B: C"), ", Manu:A:B, Name:C");
  EXPECT_EQ(PrintedNames("Acme:  Echo"), ", Manu:Acme, Name: Echo");
}

TEST_F(ComponentText, Names_AreTakenAsTheyAre) {
  EXPECT_EQ(PrintedNames("100%s: %n\n"), ", Manu:100%s, Name:%n\n");
  EXPECT_EQ(PrintedNames("M\xC3\xBCller: Echo"), ", Manu:M\xC3\xBCller, Name:Echo");
  const std::string strLong(5000, 'x');
  EXPECT_EQ(PrintedNames(strLong + ": " + strLong), ", Manu:" + strLong + ", Name:" + strLong);
}

TEST_F(ComponentText, ANameThatCannotBeHad_IsNotPrinted) {
  m_toolbox.Fail("AudioComponentCopyName", -50);
  EXPECT_EQ(PrintedNames(), "");
  EXPECT_EQ(m_toolbox.Count("CFRelease"), 0);
  m_toolbox.bComponentHasName = false;
  EXPECT_EQ(PrintedNames(), "");
  EXPECT_EQ(m_toolbox.Count("CFRelease"), 0);
  m_toolbox.bComponentHasName = true;
  m_toolbox.Fail("CFStringGetMaximumSizeForEncoding", -1);
  EXPECT_EQ(PrintedNames(), "");
  EXPECT_EQ(m_toolbox.Count("CFStringGetCString"), 0);
  m_toolbox.Fail("CFStringGetCString", -1);
  EXPECT_EQ(PrintedNames(), "");
  EXPECT_EQ(m_toolbox.Count("CFRelease(name)"), 2);
}

TEST_F(ComponentText, Name_IsAskedForInUtf8AndReleasedOnce) {
  m_toolbox.strComponentName = "Acme: Echo";
  const CAComponent component(kDescription);
  m_toolbox.ClearLog();
  Printed([&](std::FILE* p) { component.Print(p); });
  EXPECT_EQ(m_toolbox.Log(),
            (std::vector<std::string>{"AudioComponentCopyName(component)",
                                      "CFStringGetMaximumSizeForEncoding()",
                                      "CFStringGetCString(11, 134217984)", "CFRelease(name)"}));
}

TEST_F(ComponentText, AComponentThatDoesNotExist_IsNotAskedForItsName) {
  m_toolbox.Fail("AudioComponentFindNext", -1);
  EXPECT_EQ(PrintedNames(), "");
  EXPECT_EQ(m_toolbox.Count("AudioComponentCopyName"), 0);
}

TEST_F(ComponentText, AUnit_PrintsTheDescriptionOfItsComponent) {
  AudioUnit unit = nullptr;
  ASSERT_EQ(AudioComponentInstanceNew(nullptr, &unit), noErr);
  const CAAudioUnit wrapper(-3, unit);
  EXPECT_EQ(wrapper.Comp().Desc().componentSubType, kDescription.componentSubType);
  EXPECT_EQ(m_toolbox.Count("AudioComponentInstanceGetComponent(outputUnit)"), 1);
  const std::string strHead = "AudioUnit:" + Address(unit) +
                              "\n\tnode=-3\tCAComponent: " + Address(wrapper.Comp().Comp()) +
                              ", Manu:Fakes, Name:Some Unit";
  EXPECT_EQ(Printed([&](std::FILE* p) { wrapper.Print(p); }), strHead + kDescriptionText);

  m_toolbox.Fail("AudioComponentGetDescription", -50);
  EXPECT_EQ(
      Printed([&](std::FILE* p) { wrapper.Print(p); }),
      strHead + ", AudioComponentDescription: 0x00000000 - 0x00000000 - 0x00000000, 0x0, 0x0\n");
}

TEST_F(ComponentText, NoUnitAndNoComponent_AskTheToolboxNothing) {
  EXPECT_EQ(Printed([](std::FILE* p) { CAAudioUnit().Print(p); }),
            "AudioUnit:" + Address(nullptr) + "\n");
  EXPECT_FALSE(CAComponent(AudioComponent{nullptr}).IsValid());
  EXPECT_EQ(m_toolbox.Log(), std::vector<std::string>{});
}

}  // namespace
