#pragma once
// Loads product settings from text for one test and drops them afterwards.
#include <gtest/gtest.h>

#include "common/SecretKeySources.h"
#include "common/TempDirectory.h"
#include "driversupport/DSProductHelper.h"
#include "product/SOProductIdentity.h"
#include "support/StringConverter.h"
#include "support/TarniSettingReader.h"

namespace Tarni::Testing
{
class ProductSettingsFixture : public ::testing::Test
{
protected:
    void SetUp() override
    {
        SparkODBC::SOProductIdentity::Register();
        UseProductSettings("");
    }
    void TearDown() override
    {
        Support::TarniSettingReader::SetStore(nullptr);
        Support::TarniSettingReader::Reset();
        DriverSupport::DSProductHelper::LoadProductSettings(Support::StringConverter::FromUtf8((m_dir / "none.did").string()));
    }
    void UseProductSettings(const std::string& in_lines)
    {
        const auto path = m_dir / "SparkODBC.did";
        TempDirectory::WriteFile(path, in_lines);
        DriverSupport::DSProductHelper::LoadProductSettings(Support::StringConverter::FromUtf8(path.string()));
    }
    TempDirectory m_dir;
    SecretKeySources m_secretKeys;
};
}  // namespace Tarni::Testing
