// Reads one environment variable. Unset gives a null text; callers test both
// for null and for an empty first character, as an empty variable and a
// missing one mean different things in places.
#pragma once

class CKvGetEnv {
  public:
    CKvGetEnv() = default;
    explicit CKvGetEnv(const char* name) { set(name); }

    // Fetches `name` and returns its text, or null when it is not set.
    const char* set(const char* name);

    // The text held, or null.
    const char* c_str() const { return value_; }

  private:
    const char* value_ = nullptr;
};

// The text of `name` when it is set and not empty, else null: for the places
// where an empty variable means the same as a missing one.
const char* EnvText(const char* name);
