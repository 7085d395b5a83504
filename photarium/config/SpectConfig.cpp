#include "photarium/config/SpectConfig.h"

#include <exception>
#include <new>

#include "photarium/config/table.h"

namespace {

using Settings::Bases;
using Settings::Findings;
using Settings::Format;
using Settings::Row;
using Settings::Value;

template <class T>
constexpr Row<SpectConfig, T> Rows[] = {
    {"Attenuation", &SpectConfig<T>::Attenuation,
     "apply attenuation in the target"},
    {"Continuum", &SpectConfig<T>::Continuum, "compute bremsstrahlung"},
    {"Lines", &SpectConfig<T>::Lines, "compute characteristic radiation"},
    {"Pratt", &SpectConfig<T>::Pratt,
     "use the built-in cross sections; a section without it clears it"},
    {"ShapeFct", &SpectConfig<T>::ShapeFct,
     "use the partial wave shape functions; a section without it sets it"},
    {"Current", &SpectConfig<T>::Current, "tube current", "mA",
     Format::Scientific},
    {"BSModel", &SpectConfig<T>::BSModel,
     "backscattering: photarium, phmmodel, phmfast, ebel, hunger, storm or "
     "edtf"},
    {"CharModel", &SpectConfig<T>::CharModel,
     "characteristic radiation: none, ebel, phmsimple, phmfull or phmcascade"},
    {"nDepth", &SpectConfig<T>::nDepth, "depth steps; 0: as the model has it"},
    {"nTheta", &SpectConfig<T>::nTheta, "polar steps; 0: as the model has it"},
    {"nPhi", &SpectConfig<T>::nPhi, "azimuth steps; 0: as the model has it"},
    {"EdtfFile", &SpectConfig<T>::EdtfFile, "file of the model edtf"},
    {"mono", Settings::NoField,
     "true: neither continuum nor lines; false: both", "", Format::NoLine},
};

template <class T>
using Ahead = Bases<Config<T>, GridConfig<T>, ScalingConfig<T>,
                    GeometryConfig<T>, MaterialConfig<T>>;

// A switch that the word "default" returns to `usual`.
void extractSwitch(Value& value, bool& field, bool usual) {
  if (value.lower() == "default")
    field = usual;
  else
    value.extract(field);
}

// A model; an unknown one stays a finding.
template <class Model>
void extractModel(Value& value, Model& field, Findings& findings) {
  try {
    value.extract(field);
  } catch (std::bad_alloc const&) {
    throw;
  } catch (std::exception const& failure) {
    findings.soft(failure.what() + std::string("\n"));
  }
}

// What the requested radiation demands.
template <class T>
void checkRadiation(SpectConfig<T> const& c, Findings& findings) {
  findings.require(c.Thickness > 0, "Unreasonable thickness configured!\n");
  if (c.Pratt && c.kVp > 2000)
    findings.soft("kVp too large for builtin cross sections: " +
                  Settings::generalText(c.kVp) + " kV\n");
  if (c.ShapeFct && c.kVp > 500)
    findings.soft("kVp too large for partial wave shape functions: " +
                  Settings::generalText(c.kVp) + " kV\n");
}

}  // namespace

template <class T>
SpectConfig<T>::SpectConfig() {
  this->AngleIn = 70;
  this->AngleOut = 20;
  this->Transmission = false;
}

template <class T>
void SpectConfig<T>::parse(OptionMap const& options, bool chain) {
  Findings findings;
  if (chain) {
    findings.gather([&] { Config<T>::parse(options, false); });
    findings.gather([&] { GridConfig<T>::parse(options, false); });
    findings.gather([&] { ScalingConfig<T>::parse(options, false); });
    findings.gather([&] { GeometryConfig<T>::parse(options, false); });
    findings.gather([&] { MaterialConfig<T>::parse(options, false); });
  }
  Pratt = false;
  ShapeFct = true;
  auto const special = [&](std::string const& key, Value& value) {
    if (key == "mono") {
      value.extract(Continuum);
      if (!value.isBlank()) Continuum = Lines = !Continuum;
    } else if (key == "pratt") {
      extractSwitch(value, Pratt, false);
    } else if (key == "shapefct") {
      extractSwitch(value, ShapeFct, true);
    } else if (key == "bsmodel") {
      extractModel(value, BSModel, findings);
    } else if (key == "charmodel") {
      extractModel(value, CharModel, findings);
    } else {
      return false;
    }
    return true;
  };
  parseRows(Rows<T>, *this, options, findings, special);
  if (BSModel == Backscattering::Photarium) BSModel = Backscattering::PHMModel;
  if (CharModel == Characteristic::None) Lines = false;
  findings.report();
}

template <class T>
std::string SpectConfig<T>::write(std::string const& prefix, bool chain) const {
  bool const isEdtf = BSModel == Backscattering::Edtf;
  auto const shown = [&](Row<SpectConfig, T> const& row) {
    if (row.name == "EdtfFile") return isEdtf;
    if (row.name == "nDepth") return !isEdtf && nDepth != 0;
    if (row.name == "nTheta") return !isEdtf && nTheta != 0;
    if (row.name == "nPhi") return !isEdtf && nPhi != 0;
    return true;
  };
  return Ahead<T>::write(*this, prefix, chain) +
         writeRows(Rows<T>, *this, prefix, shown);
}

template <class T>
std::vector<Setting> SpectConfig<T>::settings(bool chain) const {
  return Ahead<T>::settings(*this, chain, describeRows(Rows<T>, *this));
}

template <class T>
void SpectConfig<T>::check() {
  Findings findings;
  Bases<Config<T>, GeometryConfig<T>, GridConfig<T>, MaterialConfig<T>,
        ScalingConfig<T>>::check(*this, findings);
  if (BSModel == Backscattering::Photarium) BSModel = Backscattering::PHMModel;
  findings.require(Current > 0, "Tube current not larger than zero!\n");
  if (!Continuum && !Lines)
    findings.soft(
        "Neither bremsstrahlung nor characteristic radiation requested!\n");
  else
    checkRadiation(*this, findings);
  findings.report();
}

template <class T>
T SpectConfig<T>::ScalingFactor() const {
  return (this->Time * Current) * (this->SolidAngle() * this->Norm);
}

template class SpectConfig<double>;
