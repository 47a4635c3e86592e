// SPDX-License-Identifier: BSD-3-Clause
// A plain second reader of .frd files, for comparison: whole file in memory, one string per line, no speed.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace kob_test {

struct FrdText {
    struct Element {
        std::int32_t id = 0;
        std::int32_t group = 0;
        std::string material;
        std::vector<std::int32_t> nodes;
    };
    struct Component {
        std::string name;
        int kind = 0;
        int row = 0;
        int col = 0;
        bool operator==(const Component& o) const
        {
            return name == o.name && kind == o.kind && row == o.row && col == o.col;
        }
    };
    struct Result {
        std::string name;
        std::vector<Component> components; ///< those with values
        std::map<std::string, std::vector<double>> parameters;
        double value = 0;
        int analysis = 0;
        int set = 0;
        std::vector<std::int32_t> ids;
        std::vector<double> values;

        double parameter(const std::string& key, std::size_t i) const
        {
            const auto p = parameters.find(key);
            return p == parameters.end() || p->second.size() <= i ? 0 : p->second[i];
        }
    };

    std::vector<std::string> head; ///< records 1C and 1U, whole
    std::vector<std::string> user;
    std::vector<std::int32_t> node_ids;
    std::vector<double> coordinates;
    std::map<int, std::vector<Element>> elements;                     ///< by type
    std::vector<std::pair<std::int32_t, std::int32_t>> element_types; ///< number and type, in the order of the file
    std::vector<Result> results;

    explicit FrdText(const std::string& path)
    {
        std::ifstream file{path};
        std::string line;
        std::map<std::string, std::vector<double>> parameters;
        while (std::getline(file, line)) {
            const std::string key = line.substr(0, 6);
            if (key == "    1C" || key == "    1U") head.push_back(without_end(line));
            if (key == "    1U") user.push_back(line.substr(6));
            if (key == "    1P") {
                std::istringstream words{line.substr(6)};
                std::string name;
                words >> name;
                for (double v = 0; words >> v;) parameters[name].push_back(v);
            }
            if (key == "    2C") read_nodes(file, line);
            if (key == "    3C") read_elements(file, line);
            if (key == "  100C") {
                read_result(file, line, parameters);
                parameters.clear();
            }
        }
    }

private:
    static std::string without_end(const std::string& line) { return line.substr(0, line.find_last_not_of(" \r") + 1); }

    static std::string cut(const std::string& line, std::size_t from, std::size_t width)
    {
        if (from >= line.size()) return {};
        const std::string text = line.substr(from, width);
        const auto first = text.find_first_not_of(' ');
        return first == std::string::npos ? "" : text.substr(first, text.find_last_not_of(' ') - first + 1);
    }
    static int number(const std::string& line, std::size_t from, std::size_t width)
    {
        return std::atoi(cut(line, from, width).c_str());
    }
    static std::size_t ids_width(const std::string& header) { return cut(header, 73, 2) == "0" ? 5 : 10; }

    static void values(const std::string& line, std::size_t from, std::vector<double>& out)
    {
        if ((line.size() - from) % 12 == 0) {
            for (std::size_t at = from; at < line.size(); at += 12)
                out.push_back(std::atof(line.substr(at, 12).c_str()));
            return;
        }
        // Some number is wider than its column.
        static const std::regex one{"-?[0-9]\\.[0-9]{5}E[+-](?:[0-9]{3}(?!\\.)|[0-9]{2})"};
        const std::string rest = line.substr(from);
        for (std::sregex_iterator i{rest.begin(), rest.end(), one}, end; i != end; ++i) {
            out.push_back(std::atof(i->str().c_str()));
        }
    }

    void read_nodes(std::ifstream& file, const std::string& header)
    {
        const std::size_t width = ids_width(header);
        for (std::string line; std::getline(file, line) && line.substr(0, 3) != " -3";) {
            node_ids.push_back(number(line, 3, width));
            values(line, 3 + width, coordinates);
        }
    }

    void read_elements(std::ifstream& file, const std::string& header)
    {
        const std::size_t width = ids_width(header);
        Element* element = nullptr;
        for (std::string line; std::getline(file, line) && line.substr(0, 3) != " -3";) {
            if (line.substr(0, 3) == " -1") {
                auto& all = elements[number(line, 3 + width, 5)];
                all.push_back({number(line, 3, width), number(line, 8 + width, 5), cut(line, 13 + width, 80), {}});
                element = &all.back();
                element_types.emplace_back(element->id, number(line, 3 + width, 5));
            } else {
                for (std::size_t at = 3; at + width <= line.size(); at += width) {
                    element->nodes.push_back(number(line, at, width));
                }
            }
        }
    }

    void read_result(std::ifstream& file, const std::string& header,
                     const std::map<std::string, std::vector<double>>& parameters)
    {
        Result r;
        r.parameters = parameters;
        r.value = std::atof(cut(header, 12, 12).c_str());
        r.analysis = number(header, 56, 2);
        r.set = number(header, 58, 5);
        const std::size_t width = ids_width(header);
        for (std::string line; std::getline(file, line) && line.substr(0, 3) != " -3";) {
            const std::string key = line.substr(0, 3);
            if (key == " -4") r.name = cut(line, 5, 8);
            if (key == " -5" && number(line, 33, 5) == 0) {
                r.components.push_back(
                    {cut(line, 5, 8), number(line, 18, 5), number(line, 23, 5), number(line, 28, 5)});
            }
            if (key == " -1") r.ids.push_back(number(line, 3, width));
            if (key == " -1" || key == " -2") values(line, 3 + width, r.values);
        }
        if (!r.ids.empty()) results.push_back(std::move(r)); // an empty one is left out
    }
};

} // namespace kob_test
