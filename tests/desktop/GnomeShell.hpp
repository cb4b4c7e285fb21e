#pragma once

#include <string>
#include <vector>

#include "tests/desktop/Display.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// GNOME Shell itself, without a screen. Programs get the variables that its session gives, and no other.
class GnomeShell : public Display {
  public:
    GnomeShell();

    std::vector<std::string> environment() const override;
    drawing::Picture screenshot() override;
    int panel() const override { return 32; }
    void move(int x, int y) override;
    void press(Button button) override { click(button, "PRESSED"); }
    void release(Button button) override { click(button, "RELEASED"); }
    void key(const std::string& name) override;

    /// What a script within the shell says, as JSON.
    std::string evaluate(const std::string& script) const;
    /// Its overview, once it has come or gone.
    void showOverview(bool isShown) const;

  private:
    std::string logFile() const;
    Child startShell() const;
    bool isReady() const;
    void click(Button button, const std::string& state) const;
    Finished call(std::vector<std::string> words) const;

    TemporaryFolder folder_;
    std::vector<std::string> variables_;
    Child systemBus_, bus_, shell_;
    std::string display_;
};

}  // namespace zelto::test
