#pragma once

#include "zelmresult/settings/reglage_data.h"

namespace ZelmResult::test {

// A setting with its value.
template <class Setting, class Value>
Setting* NewSetting(const idn::Idn& idn, const Value& value)
{
    auto* setting = new Setting;
    setting->info().SetIDN(idn);
    setting->setValue(value);
    return setting;
}

} // namespace ZelmResult::test
