// A machine with batteries as its kernel shows them, and the real power daemon on it:
//   umockdev-wrapper power-machine BUS FIFO
// reads from the FIFO, a line each, answering "done" to each:
//   battery NAME KEY VALUE...    adds one, or changes it and tells of it
//   adapter 0|1                  takes the adapter out, or puts it in
//   remove NAME
//   daemon start|kill

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <map>
#include <sstream>
#include <string>
#include <umockdev.h>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

class Machine {
  public:
    explicit Machine(const std::string& bus) : testbed_(umockdev_testbed_new()) {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.c_str(), 1);
        add("AC", {{"type", "Mains"}, {"online", "0"}});
    }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
    ~Machine() { kill(); }

    void change(const std::string& name, const std::map<std::string, std::string>& attributes) {
        const auto device = devices_.find(name);
        if (device == devices_.end()) {
            add(name, attributes);
            umockdev_testbed_uevent(testbed_, devices_[name].c_str(), "add");
            return;
        }
        for (const auto& [key, value] : attributes)
            umockdev_testbed_set_attribute(testbed_, device->second.c_str(), key.c_str(), value.c_str());
        umockdev_testbed_uevent(testbed_, device->second.c_str(), "change");
    }
    void remove(const std::string& name) {
        umockdev_testbed_uevent(testbed_, devices_[name].c_str(), "remove");
        umockdev_testbed_remove_device(testbed_, devices_[name].c_str());
        devices_.erase(name);
    }
    void start() {
        daemon_ = fork();
        if (daemon_ != 0) return;
        execl("/usr/libexec/upowerd", "upowerd", nullptr);
        _exit(127);
    }
    void kill() {
        if (daemon_ <= 0) return;
        ::kill(daemon_, SIGKILL);
        waitpid(daemon_, nullptr, 0);
        daemon_ = -1;
    }

  private:
    void add(const std::string& name, const std::map<std::string, std::string>& attributes) {
        std::vector<char*> words;
        for (const auto& [key, value] : attributes) {
            words.push_back(const_cast<char*>(key.c_str()));
            words.push_back(const_cast<char*>(value.c_str()));
        }
        words.push_back(nullptr);
        char* none[] = {nullptr};
        gchar* path =
            umockdev_testbed_add_devicev(testbed_, "power_supply", name.c_str(), nullptr, words.data(), none);
        devices_[name] = path;
        g_free(path);
    }

    UMockdevTestbed* testbed_;
    std::map<std::string, std::string> devices_;
    pid_t daemon_ = -1;
};

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    // Open for both, so that it never ends.
    std::fstream commands(argv[2]);
    Machine machine(argv[1]);
    for (std::string line; std::getline(commands, line);) {
        std::istringstream words(line);
        std::string command, name, key, value;
        words >> command >> name;
        if (command == "battery") {
            std::map<std::string, std::string> attributes;
            // "Not_charging": a blank within a value is written as a line.
            while (words >> key >> value) {
                for (char& c : value)
                    if (c == '_') c = ' ';
                attributes[key] = value;
            }
            machine.change(name, attributes);
        } else if (command == "adapter") {
            machine.change("AC", {{"online", name}});
        } else if (command == "remove") {
            machine.remove(name);
        } else if (command == "daemon" && name == "start") {
            machine.start();
        } else if (command == "daemon" && name == "kill") {
            machine.kill();
        } else {
            return 2;
        }
        std::cout << "done" << std::endl;
    }
}
