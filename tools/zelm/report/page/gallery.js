"use strict";
// Shows one view of the gallery at a time, by buttons, a list, arrow keys, or a click on its plate in 3-D.

class ZelmGallery {
  constructor(gallery) {
    this.gallery = gallery;
    this.views = [...gallery.querySelectorAll(".view")];
    this.controls = gallery.querySelector(".controls");
    this.list = this.controls.querySelector("select");
    this.views.forEach(view => this.list.add(new Option(view.dataset.view)));
    this.controls.hidden = false;
    gallery.classList.add("one-by-one");
    this.listen();
    this.show(0);
  }

  listen() {
    const on = (selector, event, action) => this.controls.querySelector(selector).addEventListener(event, action);
    on(".previous", "click", () => this.go(-1));
    on(".next", "click", () => this.go(1));
    on("select", "change", () => { this.show(this.list.selectedIndex); this.tell(); });
    on(".show-dots", "change", event => this.gallery.classList.toggle("no-dots", !event.target.checked));
    on(".show-errors", "change", event => this.gallery.classList.toggle("no-errors", !event.target.checked));
    this.gallery.addEventListener("keydown", event => {
      const step = {ArrowLeft: -1, ArrowRight: 1}[event.key];
      if (step && event.target !== this.list) {
        event.preventDefault();
        this.go(step);
      }
    });
    document.addEventListener("zelm-view", event => {
      this.show(this.views.findIndex(view => Number(view.dataset.view) === event.detail.view));
    });
  }

  go(step) {
    this.show((this.current + step + this.views.length) % this.views.length);
    this.tell();
  }

  tell() {
    const view = Number(this.views[this.current].dataset.view);
    document.dispatchEvent(new CustomEvent("zelm-view", {detail: {view}}));
  }

  show(index) {
    if (index < 0) {
      return;
    }
    this.current = index;
    this.list.selectedIndex = index;
    this.views.forEach((view, i) => view.classList.toggle("current", i === index));
  }
}

document.querySelectorAll(".gallery").forEach(gallery => new ZelmGallery(gallery));
addEventListener("beforeprint", () => {
  document.querySelectorAll("details").forEach(details => { details.open = true; });
});
