// The system's Chromium, headless, with nothing that reaches for the network.
import { chromium } from 'playwright-core';

export function launchChromium() {
  return chromium.launch({
    executablePath: '/usr/bin/chromium',
    args: ['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run',
      '--disable-background-networking', '--disable-component-update', '--disable-sync'],
  });
}
