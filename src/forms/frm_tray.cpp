#include "forms/frm_tray.h"

#include <string>
#include <utility>

namespace quenlar {

frmTray::frmTray(Context context, TrayIcon& icon) : Form("frmTray"), context_(std::move(context)), tray_(icon) {
  mnuPopup.items = {&mnuExtractor, &sep2, &mnuHelp, &mnuAbout, &mnuExit};
  tray_.OnRightButtonDown([this] { mnuPopup.PopUp(); });
  tmrExtract.Tick = [this] { tmrExtract_Tick(); };
  tmrFormatFlux.Tick = [this] { tmrFormatFlux_Tick(); };
  tmrFlux.Tick = [this] { tmrFlux_Tick(); };
  tmrAlarm.Tick = [this] { context_.engine.watchdog.Tick(); };
  mnuExtractor.Click = [this] { mnuExtractor_Click(); };
  mnuHelp.Click = [this] { context_.help.Show(); };
  mnuAbout.Click = [this] { context_.about.Show(); };
  mnuExit.Click = [this] { mnuExit_Click(); };
}

std::vector<ui::Control*> frmTray::Controls() {
  return {&tmrExtract, &tmrFormatFlux, &tmrFlux, &tmrAlarm, &mnuExtractor, &sep2, &mnuHelp, &mnuAbout, &mnuExit};
}

void frmTray::Load() {
  tray_.AddTrayIcon();
  ip_helper_ = std::make_unique<CIpHelper>(context_.engine.platform.interfaces, context_.engine.platform.boxes);
  tmrAlarm.SetEnabled(true);
}

// Pumps until the run has ended.
void frmTray::tmrExtract_Tick() {
  tmrExtract.SetEnabled(false);
  context_.extract.job().Run();
}

// Keeps the reader's totals fresh for the meter. Pumps where the system has no interface table: a message box says so.
void frmTray::tmrFormatFlux_Tick() {
  if (!ip_helper_) return;
  if (!first_interface_) first_interface_.emplace();
  const CInterface* first = ip_helper_->Interfaces().Item(1);
  if (first) first_interface_ = *first;
}

void frmTray::tmrFlux_Tick() {
  if (!ip_helper_) return;
  const std::int32_t rate = meter_.Tick(ip_helper_->BytesReceived());
  context_.extract.stsExtract.SetPanel(4, std::to_string(rate) + " Kbps");
}

void frmTray::mnuExtractor_Click() {
  mnuExtractor.SetEnabled(false);
  context_.extract.Show();
}

void frmTray::mnuExit_Click() {
  tray_.RemoveTrayIcon();
  context_.extract.Close();
  context_.end();
}

}  // namespace quenlar
