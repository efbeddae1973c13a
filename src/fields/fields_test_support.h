// Test-only helpers for the handler tests: standard-output capture and a
// fixture that gives every test the English labels, empty fragment lists, a
// fixed Now and the UTC zone.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include "fields/field_model.h"
#include "i18n/language.h"

namespace fields_test {

// Redirects file descriptor 1 into a temporary file until Text() is called.
class StdoutCapture {
  public:
    StdoutCapture() {
        std::fflush(stdout);
        file_ = std::tmpfile();
        saved_ = dup(1);
        if (file_ != nullptr && saved_ >= 0) dup2(fileno(file_), 1);
    }
    ~StdoutCapture() { Restore(); }

    // Everything written since construction; ends the capture.
    std::string Text() {
        Restore();
        std::string text;
        if (file_ == nullptr) return text;
        std::rewind(file_);
        char buffer[4096];
        size_t n;
        while ((n = std::fread(buffer, 1, sizeof buffer, file_)) > 0) text.append(buffer, n);
        std::fclose(file_);
        file_ = nullptr;
        return text;
    }

  private:
    void Restore() {
        if (saved_ < 0) return;
        std::fflush(stdout);
        dup2(saved_, 1);
        close(saved_);
        saved_ = -1;
    }
    std::FILE* file_ = nullptr;
    int saved_ = -1;
};

// What `call` writes to standard output.
template <class F>
std::string Captured(F call) {
    StdoutCapture capture;
    call();
    return capture.Text();
}

// 2005-01-05 10:20:30 UTC, a Wednesday.
constexpr time_t kFixedNow = 1104920430;

inline void SetZone(const char* zone) {
    setenv("TZ", zone, 1);
    tzset();
}

class FieldsTest : public ::testing::Test {
  protected:
    void SetUp() override {
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
        for (OUTPUTFIELD* field : OutputFields) delete field;
        OutputFields.clear();
        DataEdits.clear();
        DataMoves.clear();
    }
};

}  // namespace fields_test
