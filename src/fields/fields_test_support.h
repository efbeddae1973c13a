// Test-only helpers for the handler tests: the shared standard-output capture
// and a fixture that gives every test the English labels, empty fragment
// lists, a fixed Now and the UTC zone.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

#include "fields/field_model.h"
#include "html/testing/capture.h"
#include "i18n/language.h"

namespace fields_test {

using lxrtest::CaptureStdout;

// 2005-01-05 10:20:30 UTC, a Wednesday.
constexpr time_t kFixedNow = 1104920430;

inline void SetZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

class FieldsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        ResetRequestState();
        SetZone("UTC");
        if (English() == nullptr) English() = GetLanguage("LXRAdmin", "", nullptr, false);
        Lang = English();
        FillTags();
        Now = kFixedNow;
        ClearLists();
    }
    void TearDown() override {
        ClearLists();
        Lang = English();
        SetZone("UTC");
    }

    static CLanguage*& English() {
        static CLanguage* language = nullptr;
        return language;
    }

    static void ClearLists() {
        OutputFields.clear();
        DataEdits.clear();
        DataMoves.clear();
    }
};

}  // namespace fields_test
