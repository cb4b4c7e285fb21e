#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tests/desktop/Devices.hpp"
#include "tests/desktop/Display.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// KWin as a Wayland compositor, without a screen.
class KWin : public Display {
  public:
    KWin();

    std::vector<std::string> environment() const override;
    drawing::Picture screenshot() override;
    void move(int x, int y) override { devices_->move(x, y); }
    void press(Button button) override { devices_->press(button); }
    void release(Button button) override { devices_->release(button); }
    void key(const std::string& name) override { devices_->key(name); }

  private:
    TemporaryFolder folder_;
    PrivateBus bus_;
    std::vector<std::string> variables_;
    Child compositor_;
    std::optional<Devices> devices_;
};

}  // namespace zelto::test
