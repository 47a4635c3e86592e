// SPDX-License-Identifier: BSD-3-Clause
// A cantilever of hexahedra with results in several states, in any fineness.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <kob_dp.h>

#include "kob_file.hpp"
#include "sample_file.hpp"
#include "text256.hpp"

namespace kob_test {

struct BeamShape {
    int nx = 4;
    int ny = 2;
    int nz = 1;
    int states = 2;
    int node_count() const { return (nx + 1) * (ny + 1) * (nz + 1); }
    int element_count() const { return nx * ny * nz; }
};

/// Nodes count from 1 along x, then y, then z; the beam points along x and is 10 long.
class BeamFile : public KobFile {
public:
    explicit BeamFile(const BeamShape& shape = {}) : shape_{shape}
    {
        write_header(*this);
        write_system(*this);
        write_index(*this);
        write_variable_group(*this);
        write_variable(*this);
        write_elements();
        write_nodes();
        for (int state = 1; state <= shape.states; ++state) write_state(state);
        write_element_domains();
        close();
    }

    const BeamShape& shape() const { return shape_; }

private:
    int node(int i, int j, int k) const { return 1 + i + (shape_.nx + 1) * (j + (shape_.ny + 1) * k); }

    void write_elements()
    {
        std::vector<std::int32_t> idele, pid, ic, iparam;
        for (int k = 0; k < shape_.nz; ++k)
            for (int j = 0; j < shape_.ny; ++j)
                for (int i = 0; i < shape_.nx; ++i) {
                    idele.push_back(static_cast<std::int32_t>(idele.size()) + 1001);
                    pid.push_back(j + 1);
                    iparam.push_back(7 * i);
                    for (const int up : {0, 1})
                        for (const auto& [di, dj] : std::array<std::array<int, 2>, 4>{{{0, 0}, {1, 0}, {1, 1}, {0, 1}}})
                            ic.push_back(node(i + di, j + dj, k + up));
                }
        Text256 etyp = "ELEMENT", etypelem = "HEXA8", etyppart = "PART", etypnode = "NODE", etypvar = "";
        const auto nele = static_cast<std::int32_t>(idele.size());
        const std::int32_t npele = 8, ndim = 3, nbint = 1, nbfloat = 0, nindex = 0, indexic = 0, state = -1, flags = 0,
                           float_size = 8;
        std::int32_t status = 77;
        KOB_WRITE_CONNECTIVITIES(address(), etyp.data(), etypelem.data(), etyppart.data(), etypnode.data(),
                                 etypvar.data(), &nele, &npele, &ndim, &nbint, &nbfloat, &nindex, &indexic, nullptr,
                                 nullptr, idele.data(), pid.data(), ic.data(), iparam.data(), nullptr, &state, &flags,
                                 no_params.data(), &float_size, &status);
        ASSERT_EQ(status, 0);
        elements_ = idele;
    }

    void write_nodes()
    {
        std::vector<double> places;
        for (int k = 0; k <= shape_.nz; ++k)
            for (int j = 0; j <= shape_.ny; ++j)
                for (int i = 0; i <= shape_.nx; ++i) {
                    nodes_.push_back(node(i, j, k));
                    for (const double x : {10.0 * i / shape_.nx, 1.0 * j / shape_.ny, 0.5 * k / shape_.nz})
                        places.push_back(x);
                }
        write_results(*this,
                      {.variable = "COORDINATE", .ncoo = 3, .entid = nodes_, .res = places, .zone = "", .zoneid = -1});
        places_ = places;
    }

    /// Bending: the deflection grows with the square of x and with the state.
    void write_state(int state)
    {
        std::vector<double> motion, pressure;
        for (std::size_t n = 0; n < nodes_.size(); ++n) {
            const double x = places_[3 * n];
            motion.insert(motion.end(), {0.1 * state, 0.25 * static_cast<double>(n), -state * x * x / 300});
            pressure.insert(pressure.end(), {std::sin(x + state), std::cos(x - state)});
        }
        const double time = 0.5 * state;
        write_results(*this, {.ncoo = 3,
                              .entid = nodes_,
                              .res = motion,
                              .indexident = {state},
                              .indexval = {time},
                              .zone = "",
                              .zoneid = -1});
        write_results(*this, {.variable = "PRESSURE",
                              .ncoo = 1,
                              .entid = nodes_,
                              .res = pressure,
                              .indexident = {state},
                              .indexval = {time},
                              .value_size = 32,
                              .flags = 2 | 16,
                              .params = {0, 6},
                              .zone = "",
                              .zoneid = -1,
                              .set = 4});
    }

    void write_element_domains()
    {
        std::vector<double> energy;
        for (const std::int32_t id : elements_) energy.push_back(1.0 / id);
        write_results(*this, {.variable = "ENERGY",
                              .ncoo = 1,
                              .entid = elements_,
                              .res = energy,
                              .etyp = "HEXA8",
                              .zone = "",
                              .zoneid = -1});
    }

    BeamShape shape_;
    std::vector<std::int32_t> nodes_;
    std::vector<std::int32_t> elements_;
    std::vector<double> places_;
};

} // namespace kob_test
