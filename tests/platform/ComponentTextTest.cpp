// SPDX-License-Identifier: Apache-2.0
//
// The texts of components and units on a toolbox that can name its component as it likes.
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
  // What stands between the address and the description.
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
  EXPECT_EQ(", Manu:Acme, Name:Echo", PrintedNames("Acme: Echo"));
  EXPECT_EQ(", Name:Echo", PrintedNames("Echo"));
  EXPECT_EQ(", Manu:Acme", PrintedNames("Acme: "));
  EXPECT_EQ(", Name:Echo", PrintedNames(": Echo"));
  EXPECT_EQ("", PrintedNames(": "));
  EXPECT_EQ("", PrintedNames(""));
}

TEST_F(ComponentText, TheFirstColonWithABlank_EndsTheManufacturer) {
  EXPECT_EQ(", Manu:Acme, Name:Echo: Long", PrintedNames("Acme: Echo: Long"));
  EXPECT_EQ(", Name:Acme:Echo", PrintedNames("Acme:Echo"));
  EXPECT_EQ(", Manu:A:B, Name:C", PrintedNames("A:B: C"));
  EXPECT_EQ(", Manu:Acme, Name: Echo", PrintedNames("Acme:  Echo"));
}

TEST_F(ComponentText, NamesAreTakenAsTheyAre) {
  EXPECT_EQ(", Manu:100%s, Name:%n\n", PrintedNames("100%s: %n\n"));
  EXPECT_EQ(", Manu:M\xC3\xBCller, Name:Echo", PrintedNames("M\xC3\xBCller: Echo"));
  const std::string strLong(5000, 'x');
  EXPECT_EQ(", Manu:" + strLong + ", Name:" + strLong, PrintedNames(strLong + ": " + strLong));
}

TEST_F(ComponentText, ANameThatCannotBeHad_IsNotPrinted) {
  m_toolbox.Fail("AudioComponentCopyName", -50);
  EXPECT_EQ("", PrintedNames());
  EXPECT_EQ(0, m_toolbox.Count("CFRelease"));
  m_toolbox.bComponentHasName = false;
  EXPECT_EQ("", PrintedNames());
  EXPECT_EQ(0, m_toolbox.Count("CFRelease"));
  m_toolbox.bComponentHasName = true;
  m_toolbox.Fail("CFStringGetMaximumSizeForEncoding", -1);
  EXPECT_EQ("", PrintedNames());
  EXPECT_EQ(0, m_toolbox.Count("CFStringGetCString"));
  m_toolbox.Fail("CFStringGetCString", -1);
  EXPECT_EQ("", PrintedNames());
  EXPECT_EQ(2, m_toolbox.Count("CFRelease(name)"));
}

TEST_F(ComponentText, ANameIsAskedForInUtf8AndReleasedOnce) {
  m_toolbox.strComponentName = "Acme: Echo";
  const CAComponent component(kDescription);
  m_toolbox.ClearLog();
  Printed([&](std::FILE* p) { component.Print(p); });
  EXPECT_EQ((std::vector<std::string>{"AudioComponentCopyName(component)",
                                      "CFStringGetMaximumSizeForEncoding()",
                                      "CFStringGetCString(11, 134217984)", "CFRelease(name)"}),
            m_toolbox.Log());
}

TEST_F(ComponentText, AComponentThatDoesNotExist_IsNotAskedForItsName) {
  m_toolbox.Fail("AudioComponentFindNext", -1);
  EXPECT_EQ("", PrintedNames());
  EXPECT_EQ(0, m_toolbox.Count("AudioComponentCopyName"));
}

TEST_F(ComponentText, AUnit_PrintsTheDescriptionOfItsComponent) {
  AudioUnit unit = nullptr;
  ASSERT_EQ(noErr, AudioComponentInstanceNew(nullptr, &unit));
  const CAAudioUnit wrapper(-3, unit);
  EXPECT_EQ(kDescription.componentSubType, wrapper.Comp().Desc().componentSubType);
  EXPECT_EQ(1, m_toolbox.Count("AudioComponentInstanceGetComponent(outputUnit)"));
  const std::string strHead = "AudioUnit:" + Address(unit) +
                              "\n\tnode=-3\tCAComponent: " + Address(wrapper.Comp().Comp()) +
                              ", Manu:Fakes, Name:Some Unit";
  EXPECT_EQ(strHead + kDescriptionText, Printed([&](std::FILE* p) { wrapper.Print(p); }));

  m_toolbox.Fail("AudioComponentGetDescription", -50);
  EXPECT_EQ(
      strHead + ", AudioComponentDescription: 0x00000000 - 0x00000000 - 0x00000000, 0x0, 0x0\n",
      Printed([&](std::FILE* p) { wrapper.Print(p); }));
}

TEST_F(ComponentText, NoUnitAndNoComponent_AskTheToolboxNothing) {
  EXPECT_EQ("AudioUnit:" + Address(nullptr) + "\n",
            Printed([](std::FILE* p) { CAAudioUnit().Print(p); }));
  EXPECT_FALSE(CAComponent(AudioComponent{nullptr}).IsValid());
  EXPECT_EQ(std::vector<std::string>{}, m_toolbox.Log());
}

}  // namespace
