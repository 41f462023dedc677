// SPDX-License-Identifier: Apache-2.0
// ANDI-MS through the netCDF library: dimensions, per-scan and per-point variables, global attributes.
#include "vexaexport.h"

#include "safecopy.h"
#include "text.h"
#include "timeformat.h"

#include <netcdf.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <vector>

namespace VexaExport {

namespace {

std::string TimeStamp(uint32_t seconds) {
    const std::time_t time = seconds;
    std::tm utc{};
    ToUtcTime(time, &utc);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d%H%M%S+0000", &utc);
    return text;
}

class NetcdfWriter {
public:
    explicit NetcdfWriter(std::string* reason) : m_reason(reason) {}
    ~NetcdfWriter() {
        if (m_open)
            nc_close(m_id);
    }

    bool Check(int status, const char* what) {
        if (status == NC_NOERR)
            return true;
        if (m_ok)
            *m_reason = std::string(what) + ": " + nc_strerror(status);
        m_ok = false;
        return false;
    }
    bool Create(const std::string& path) {
        m_open = Check(nc_create(path.c_str(), NC_CLOBBER, &m_id), "cannot create the file");
        return m_open;
    }
    bool Close() {
        m_open = false;
        return Check(nc_close(m_id), "cannot finish the file");
    }
    void Text(const char* name, const std::string& value) {
        Check(nc_put_att_text(m_id, NC_GLOBAL, name, value.size(), value.c_str()), name);
    }
    int Variable(const char* name, nc_type type, int dimension) {
        int id = -1;
        Check(nc_def_var(m_id, name, type, 1, &dimension, &id), name);
        return id;
    }
    int id() const { return m_id; }
    bool ok() const { return m_ok; }

private:
    std::string* m_reason;
    int m_id = -1;
    bool m_open = false;
    bool m_ok = true;
};

bool WriteFile(const VexaRun& run, const std::string& path, std::string* reason) {
    const size_t scans = run.ScanCount();
    NetcdfWriter nc(reason);
    int scanDim = -1;
    int pointDim = -1;
    if (!nc.Create(path) || !nc.Check(nc_def_dim(nc.id(), "scan_number", scans, &scanDim), "scan_number") ||
        !nc.Check(nc_def_dim(nc.id(), "point_number", run.TotalPoints(), &pointDim), "point_number"))
        return false;
    const int time = nc.Variable("scan_acquisition_time", NC_DOUBLE, scanDim);
    const int total = nc.Variable("total_intensity", NC_DOUBLE, scanDim);
    const int index = nc.Variable("scan_index", NC_INT, scanDim);
    const int count = nc.Variable("point_count", NC_INT, scanDim);
    const int low = nc.Variable("mass_range_min", NC_DOUBLE, scanDim);
    const int high = nc.Variable("mass_range_max", NC_DOUBLE, scanDim);
    const int masses = nc.Variable("mass_values", NC_FLOAT, pointDim);
    const int intensities = nc.Variable("intensity_values", NC_FLOAT, pointDim);
    nc.Text("dataset_completeness", "C1+C2");
    nc.Text("ms_template_revision", "1.0.1");
    nc.Text("experiment_title", run.SampleName());
    nc.Text("experiment_date_time_stamp", TimeStamp(run.StartTime()));
    nc.Text("test_ionization_mode", "Electron Impact");
    nc.Text("raw_data_mass_format", "Float");
    nc.Text("raw_data_intensity_format", "Float");
    nc.Text("units", "Seconds");
    if (!nc.ok() || !nc.Check(nc_enddef(nc.id()), "cannot define the file"))
        return false;

    const auto [massLow, massHigh] = run.MassRange();
    std::vector<double> times(scans), totals(scans), lows(scans, massLow), highs(scans, massHigh);
    std::vector<int> indices(scans), counts(scans);
    for (size_t scan = 0; scan < scans; ++scan) {
        times[scan] = run.TimeSeconds(scan);
        totals[scan] = run.Tic()[scan];
        indices[scan] = static_cast<int>(run.FirstPoint(scan));
        counts[scan] = static_cast<int>(run.PointCount(scan));
    }
    nc.Check(nc_put_var_double(nc.id(), time, times.data()), "scan_acquisition_time");
    nc.Check(nc_put_var_double(nc.id(), total, totals.data()), "total_intensity");
    nc.Check(nc_put_var_int(nc.id(), index, indices.data()), "scan_index");
    nc.Check(nc_put_var_int(nc.id(), count, counts.data()), "point_count");
    nc.Check(nc_put_var_double(nc.id(), low, lows.data()), "mass_range_min");
    nc.Check(nc_put_var_double(nc.id(), high, highs.data()), "mass_range_max");
    nc.Check(nc_put_var_float(nc.id(), masses, run.AllMasses().data()), "mass_values");
    nc.Check(nc_put_var_float(nc.id(), intensities, run.AllIntensities().data()), "intensity_values");
    return nc.ok() && nc.Close();
}

} // namespace

bool WriteAndi(const VexaRun& run, const std::string& path, std::string* reason) {
    // netCDF classic takes a zero length only for its one unlimited dimension.
    if (!run.HasSpectra() || run.ScanCount() == 0 || run.TotalPoints() == 0) {
        *reason = "the run has no spectra to export";
        return false;
    }
    const std::filesystem::path target(path);
    const std::filesystem::path temporary =
        target.parent_path() / (ToUtf8(kCopyTemporaryPrefix) + target.filename().string());
    std::error_code error;
    if (!WriteFile(run, temporary.string(), reason)) {
        std::filesystem::remove(temporary, error);
        return false;
    }
    std::filesystem::rename(temporary, target, error);
    if (error) {
        *reason = "cannot put the file in place: " + error.message();
        std::filesystem::remove(temporary, error);
        return false;
    }
    return true;
}

} // namespace VexaExport
